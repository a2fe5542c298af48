// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_MP_MYLIBRARY_H
#define MARVOLA_MP_MYLIBRARY_H

#include <marvola/DataSessionManager.h>
#include <marvola/Export.h>
#include <marvola/Types.h>

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <memory>

class PlayerEngine;

/// The media library of a phone's media player.
///
/// The player creates one object and hands it the PlayerEngine that it works for; the engine is not owned and must
/// outlive the object and its refreshes. Storage places and the settings file come from the environment variables
/// TROVE_DATA_PATH, CARD1_MOUNT_PATH, CARD2_MOUNT_PATH and JUV_APP_WRITE_PATH, read once at construction. The directory
/// that JUV_APP_WRITE_PATH names must exist by then: if it does not, and the settings name no other, there is no work
/// directory, and neither an index nor a list is kept.
///
/// Threads: every operation is called on the thread that created the object. A refresh runs on a worker thread, and
/// refreshContinue() is emitted on that thread; a receiver that lives on another thread gets it queued when connected
/// with Qt::AutoConnection. While isMyLibraryRefreshing() is true, the index must not be queried nor the search order
/// changed, and refreshMediaList() is refused, as it is while another object refreshes; all else is allowed.
///
/// Nothing throws and nothing is logged: a failure shows only in the result.
class MARVOLA_EXPORT MP_MyLibrary : public QObject
{
    Q_OBJECT

public:
    /// Reads the environment, the settings and the saved lists, chooses the work directory and makes the link service.
    explicit MP_MyLibrary(PlayerEngine *engine);

    /// Closes an open link. Stores nothing: call storeMyLibrary() before.
    ///
    /// Neither stops nor waits for a running refresh, which goes on to its end on its worker thread and rewrites the
    /// index, but emits nothing any more. It touches nothing of this object; what it still uses are the engine, the
    /// storage places, the two index files, the MediaTypeRegistry and TROVE_Global. So the engine must live until the
    /// worker has ended: cancelRefreshMyLibrary() waits for it, that of any other object too.
    ///
    /// Where a receiver of refreshContinue() is being called on the worker, it waits for that call, and meanwhile
    /// delivers calls that are queued to objects of this thread, so that a receiver connected with
    /// Qt::BlockingQueuedConnection gets on. From within such a receiver the object must not be destroyed: each would
    /// wait for the other.
    ~MP_MyLibrary() override;

    /// \name Settings
    /// Plain reads and writes of values in memory, without check or clamping; storeConfig() keeps them.
    /// @{

    /// Reads all settings and limits, with defaults for what is missing, and chooses the work directory. The
    /// constructor calls it.
    void restoreConfig();
    /// Writes what the user can change to the settings file. Failures pass unnoticed; the file is then as it was.
    void storeConfig();
    /// Stores the settings with storeConfig() and then the saved lists.
    void storeMyLibrary();

    /// Sets whether the player is silent; not unless stored otherwise.
    void setMute(bool mute);
    /// Whether the player is silent.
    bool getMute() const;
    /// Sets the volume, 0 to 255; 10 unless stored otherwise.
    void setVolume(unsigned char volume);
    /// The volume, 0 to 255.
    unsigned char getVolume() const;
    /// Sets whether the list begins again at its end; not unless stored otherwise.
    void setRepeat(bool repeat);
    /// Whether the list begins again at its end.
    bool getRepeat() const;
    /// Also rebuilds the play order: in list order when off, else in random order with the active item first.
    void setShuffle(bool shuffle);
    /// Whether the list is played in random order.
    bool getShuffle() const;
    /// Sets the video mode, a number of the player's own; 1 unless configured otherwise. Never stored.
    void setVideoMode(unsigned char mode);
    /// The video mode.
    unsigned char getVideoMode() const;
    /// The name of the text codec for clip texts that are not Unicode; "GBK" unless configured otherwise.
    QString getCodecForClip() const;
    /// Sets whether streams go through the proxy; not unless stored otherwise.
    void setProxy(bool enabled);
    /// Whether streams go through the proxy.
    bool getProxy() const;
    /// Sets the proxy's address, any text.
    void setProxyIp(const QString &address);
    /// The proxy's address; empty unless stored otherwise.
    QString getProxyIp() const;
    /// Sets the proxy's port.
    void setProxyPort(unsigned short port);
    /// The proxy's port; 8080 unless stored otherwise.
    unsigned short getProxyPort() const;
    /// Sets the network profile that the data link is opened with.
    void setProfileName(const QString &name);
    /// The network profile; empty when the user is asked for one.
    QString getProfileName() const;
    /// The link of the shop that came with the device. Never stored.
    QString getMusicShopURL() const;
    /// @}

    /// \name Storage locations
    /// @{

    /// Tells whether \a dir has room for the library's two index files, by really reserving what is missing in a probe
    /// file that does not outlive the call.
    bool hasEnoughSpace(const QString &dir) const;
    /// The memory cards' roots that have enough space: /mmc/mmca1 to 4, then /sd/sda1 to 4.
    QStringList getAvailableDirectory() const;
    /// Makes \a dir the work directory and reserves the index files' space in it: 50,000 bytes for the list file and
    /// 150,000 for the info file, unless they exist.
    /// \return false when \a dir does not exist or has no room; the work directory is then as it was.
    bool setWorkDirectory(const QString &dir);
    /// The work directory as it was set; empty when none is chosen.
    QString getWorkDirectory() const;
    /// @}

    /// \name Refresh
    /// @{

    /// Starts a refresh of the index on the worker thread and returns at once; does nothing while one runs. Every
    /// refresh ends with refreshContinue(100), which comes at once, on this thread, when there is no work directory or
    /// the worker cannot be started, as while it is at work for another object, or from within refreshMediaList().
    /// Without a work directory isMyLibraryRefreshing() and a cancellation end as well, even where the worker of an
    /// earlier refresh is still at work: it goes on.
    void refreshMyLibrary();
    /// Tells a running refresh to stop before its next file and waits until it has ended and written the index of what
    /// it had; the search for files, which comes before the first one, is not cut short. Does not wait when none runs.
    ///
    /// No events are delivered meanwhile, except while a receiver of refreshContinue() holds the worker up: it may be
    /// waiting for this thread, so calls that are queued to objects of this thread are delivered. From within a
    /// receiver connected with Qt::BlockingQueuedConnection it must not be called: each would wait for the other.
    /// \return the names of the places that were scanned to their end by the last refresh
    QStringList cancelRefreshMyLibrary();
    /// Whether a refresh of this object runs.
    bool isMyLibraryRefreshing() const;
    /// Replaces the search order: the translated names of the places to scan, in order. Not while a refresh runs.
    void setRefreshFlag(const QStringList &places);
    /// The search order.
    QStringList getRefreshFlag() const;
    /// Appends the path of every file below \a dir that matches \a filter to \a files: each folder's own files, then
    /// its subfolders, both sorted by name ignoring case. Hidden entries, names that are not UTF-8 and folders more
    /// than 32 levels below their storage place are left out. \a filter is patterns ending with ";" each, like
    /// "*.mp3;*.amr;"; letter case does not matter.
    void getAllFiles(const QString &dir, const QString &filter, QStringList &files) const;
    /// Appends a record for each of \a files to the info file at byte \a offset, which is moved on behind each record,
    /// and new texts of audio files to \a artists, \a albums and \a genres; a step of the refresh.
    /// The info file's record count stays as it is: only a refresh publishes one.
    /// \return false when stopped early: cancelled, or a limit was reached; also, with nothing done, while the worker
    /// is at work, for this object or another
    bool refreshMediaList(unsigned int &offset, const QStringList &files, QStringList &artists, QStringList &albums,
                          QStringList &genres);
    /// @}

    /// \name Saved lists
    /// History, bookmarks and the current playing list, kept in the list file of the work directory. Failures pass
    /// unnoticed; the file is then as it was.
    /// @{

    /// Writes the three lists. Afterwards the play cursor holds the list position of the active item. Lists that this
    /// object could not read, because the card they are on was out or another one then, stay as they are.
    void storeAllList();
    /// Appends what is stored to the three lists, without regard for limits. With shuffle on the active item comes
    /// first in a new play order. The constructor calls it once a work directory is chosen.
    void restoreMyLibrary();
    /// @}

    /// \name Playlists
    /// Named playlists, kept in the list file and written at once. Names are case-sensitive. Status codes: 0 done,
    /// 1 failure (no work directory, a write refused, nothing on the medium), 2 a limit was reached, 3 empty name.
    /// @{

    /// Stores the current playing list back into its own playlist, if it has a name, and starts an empty one without a
    /// name. Refused with 2 when the catalogue holds exactly as many playlists as allowed.
    UINT8 newPlayList();
    /// Stores the current playing list as the playlist \a name, new or in place of the old one, and takes that name.
    /// With more items than allowed the first ones are stored, the name is not taken, and the result is 2.
    UINT8 savePlayList(const QString &name);
    /// Makes the playlist \a name the current playing list; its first item in play order becomes active.
    /// \return its items in list order; none, with nothing changed, when the catalogue does not hold the name
    QStringList loadPlayList(const QString &name);
    /// Takes the playlist \a name out of the catalogue.
    /// \return false when it is not there (the catalogue then loses its entries) or cannot be written
    bool deletePlayList(const QString &name);
    /// Removes every playlist. The current playing list stays.
    bool deleteAllPlayLists();
    /// Gives the playlist \a oldName the name \a newName; the current playing list's name moves along.
    /// \return false when a name is empty, \a oldName is not there or \a newName is; true when both are the same
    bool renamePlayList(const QString &oldName, const QString &newName);
    /// Whether the catalogue has a playlist \a name.
    bool hasPlayList(const QString &name) const;
    /// "playlist" and a number that no playlist has; null without a work directory. The name is not reserved: asking
    /// twice gives the same.
    QString getDefaultPlayListName() const;
    /// @}

    /// \name Current playing list
    /// The list being played: items (paths and URLs), a flag for each, the play order, and the play cursor, a position
    /// in that order. Positions given and returned here are list positions, counted from 0. A text should be in the
    /// list once only: removing or moving it takes every copy.
    /// @{

    /// Names the playlist that the list is from; a null name changes nothing.
    void setCurrentPlayingListName(const QString &name);
    /// The name of the playlist that the list is from; empty when it is from none.
    QString getCurrentPlayingListName() const;
    /// Makes \a item the only one, and active; the list then has no name. An empty text changes nothing.
    void setCurrentPlayingList(const QString &item);
    /// Replaces the list by \a items, as far as addItemsToPlayList() takes them; the list then has no name. The play
    /// cursor keeps its number: call setActiveItem() afterwards. No items change nothing.
    void setCurrentPlayingList(const QStringList &items);
    /// The number of items.
    unsigned int getCurrentPlayingListNumber() const;
    /// The items in list order.
    QStringList getCurrentPlayingList() const;
    /// Empties the list; its name stays.
    void clearCurrentPlayingList();
    /// Whether \a item is in the list.
    bool hasItem(const QString &item) const;
    /// Replaces the text of the first entry \a oldUrl by \a newUrl, unless that is in the list already.
    void editUrl(const QString &oldUrl, const QString &newUrl);
    /// Notes for the player whether the list is a passing one; it has no effect here.
    void setTemporaryPlaylistState(bool temporary);
    /// What the player noted.
    bool getTemporaryPlaylistState() const;
    /// Set by adding and removing items; only the player clears it.
    void setCurrentPlaylistChangedState(bool changed);
    /// Whether items were added or removed since the player cleared it.
    bool getCurrentPlaylistChangedState() const;
    /// Stores \a flag for \a item; nothing happens when it is not in the list.
    void setItemFlag(const QString &item, MP_MEDIA_FILE_TYPE_T flag);
    /// The flag of \a item, 0 when it is not in the list.
    MP_MEDIA_FILE_TYPE_T getItemFlag(const QString &item) const;

    /// Appends those of \a items that are not in the list yet. With shuffle on they are played in random order after
    /// the present ones.
    /// \return false when the limit stopped it; what was taken before stays
    bool addItemsToPlayList(QStringList &items);
    /// The same with positions in the list that a library query or getItemListOfHistory() handed out last; positions
    /// beyond its end are passed over.
    /// \return false when the limit stopped it, and for no positions at all
    bool addItemsToPlayList(QValueList<unsigned short> &indices);
    /// The same with the URLs of the bookmarks \a names; names that are no bookmarks are passed over.
    bool addBookmarksToPlayList(QStringList &names);

    /// Removes the item at \a index. \return false when there is none
    bool removeItemFromPlayList(unsigned short index);
    /// Moves the item at \a index one place towards the front; true, with nothing changed, at the front. The active
    /// item stays active. \return false when there is no such item
    bool itemUp(unsigned short index);
    /// Moves the item at \a index one place towards the back, as itemUp() does towards the front.
    bool itemDown(unsigned short index);

    /// Puts \a list into random order. Not a uniform shuffle: each of as many passes as there are entries swaps the
    /// first entry with a random one, and values above 65,535 lose their upper bits when they leave the first place.
    /// The C library's generator is seeded with the time in seconds, so two calls within a second on lists of one
    /// length give the same order.
    void randomizeList(QValueList<unsigned int> &list) const;
    /// Puts the items themselves into random order in the same way; the active item stays active.
    /// \return the items in their new order
    QStringList randomizePlayList();
    /// @}

    /// \name Navigation
    /// Results are null strings where there is no such item.
    /// @{

    /// The item that the play cursor is on.
    QString getActiveItem() const;
    /// Makes the item at \a index active; nothing happens when there is none. With shuffle on, \a pickFirst also makes
    /// it the first in play order, so that all others follow.
    void setActiveItem(unsigned short index, bool pickFirst);
    /// Goes on to the next item in play order and returns it; at the end, to the first if repeat is on (with shuffle on
    /// in a new order). Without an active item it goes to the first.
    QString getNextItem();
    /// Goes back; at the front, to the last if repeat is on.
    QString getPrevItem();
    /// Whether there is a next item; false without an active item.
    bool hasNextItem() const;
    /// Whether there is a previous item; false without an active item.
    bool hasPrevItem() const;
    /// Whether \a item is the last in play order.
    bool isLastItem(const QString &item) const;
    /// The position of the first entry \a item, or -1.
    int getItemIndex(const QString &item) const;
    /// The item at \a index.
    QString getItemContent(unsigned short index) const;
    /// Whether the item at \a index is a file, as opposed to a stream.
    bool isClip(unsigned short index) const;
    /// @}

    /// \name Library queries
    /// Each reads the index and leaves its result in the last item list. A missing index gives an empty list.
    /// @{

    /// The paths of all indexed files, of whatever kind.
    QStringList getAllMedia();
    /// The paths of all audio files.
    QStringList getAllAudio();
    /// The paths of all video files.
    QStringList getAllVideo();
    /// The distinct artists of the audio files, in the order they were found.
    QStringList getAllArtists();
    /// The distinct albums of the audio files, in the order they were found.
    QStringList getAllAlbums();
    /// The distinct genres of the audio files, in the order they were found.
    QStringList getAllGenres();
    /// The names of all playlists, the oldest first.
    QStringList getAllPlayLists();
    /// The paths of the audio files whose artist is exactly \a artist, as getAllArtists() gives it.
    QStringList getItemListOfArtist(const QString &artist);
    /// The paths of the audio files whose album is exactly \a album.
    QStringList getItemListOfAlbum(const QString &album);
    /// The paths of the audio files whose genre is exactly \a genre.
    QStringList getItemListOfGenre(const QString &genre);
    /// The entries of one numbered group of the list file; playlist names come without their prefix.
    QStringList getItemListFromListFile(const QString &group);
    /// The paths of the indexed files of \a kind ("media", "audio", "video", "artist", "album", "genre"); the last
    /// three give the audio files whose text equals \a value.
    QStringList getItemListFromInfoFile(const QString &kind, const QString &value);
    /// @}

    /// \name Bookmarks
    /// Named links, at most one for each name, kept in memory until the saved lists are stored.
    /// @{

    /// Stores \a url under \a name, in place of the URL that is there.
    /// \return 0 stored; 2 the number of bookmarks equals the limit, which refuses a known name too; 3 \a name or \a
    /// url is empty. More bookmarks than the limit, as older files may bring in, are no reason to refuse.
    int addItemToBookmark(const QString &name, const QString &url);
    /// Gives the bookmark \a oldName another name. Two equal names succeed, whether or not there is such a bookmark.
    /// \return false when a name is empty, when \a newName is taken or when there is no \a oldName
    bool renameBookmarName(const QString &oldName, const QString &newName);
    /// Whether there is a bookmark \a name.
    bool hasBookmark(const QString &name) const;
    /// Removes the bookmarks with these names and passes over other names. \a names itself stays as it is.
    void removeItemsFromBookmark(QStringList &names);
    /// The names of all bookmarks, in ascending order of their characters' codes.
    QStringList getItemListOfBookmark() const;
    /// A name for a new bookmark that none has: "Bookmark" and a number that only grows while the process runs, so that
    /// the name of a deleted bookmark does not come back.
    QString getDefaultBookmarkName() const;
    /// @}

    /// \name History and preset links
    /// @{

    /// Puts \a url at the front of the history, from its place if it has one. A new link costs a history whose length
    /// equals the limit its oldest entry; one that was restored longer than the limit loses nothing. An empty \a url is
    /// passed over.
    void addItemToHistory(const QString &url);
    /// The links that were played, the latest first; it becomes the last item list.
    QStringList getItemListOfHistory();
    /// The preset links of the configuration that are not empty, in their order.
    QStringList getItemListOfPreconfig() const;
    /// @}

    /// \name Data connection
    /// @{

    /// Opens the packet-data link unless there is one, and writes the name of its network interface to
    /// /tmp/Marvola_GPRS_Link. Blocks, processing the application's events, until the link service tells that the link
    /// is open or failed; there is no time limit. Without a profile name the user is asked for one, which becomes the
    /// profile name.
    ///
    /// Called again from an event meanwhile: true at once when the link has an id already, open or not; otherwise a
    /// link is opened anew, and its outcome ends both calls. False at once from inside the link service's openLink(),
    /// and from 8 calls on. The object may be deleted meanwhile; the call then returns false. \return whether there is
    /// a link, also when the file cannot be written or anything else than a regular file of this user's own has its
    /// path; such a thing is left alone
    bool setupConnection();
    /// @}

Q_SIGNALS:
    /// The progress of a refresh in percent; emitted on the worker thread, always 100 at the end.
    void refreshContinue(UINT8 percent);

    /// The state of the data link: 2 the wait ended without a link, 3 the link is being opened, 4 the link was broken.
    void dataConnectionStatus(int status);

public Q_SLOTS:
    /// The link service opened the link \a id.
    void onSlotLinkConnected(int id, LinkInfo &info);
    /// The link service could not open the link \a id.
    void onSlotLinkOpenFailed(int id, unsigned short error, unsigned short detail);
    /// The link service lost the link \a id.
    void onSlotLinkBroken(int id, LinkInfo &info);

private:
    struct Q_DECL_HIDDEN State;
    std::unique_ptr<State> d;
};

#endif
