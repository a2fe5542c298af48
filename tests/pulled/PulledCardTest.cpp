// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// A card that goes away before each of the library's calls to the system, and comes back empty, with what was on it, or
// read-only. The refresh ends, nothing hangs, and nothing is lost that was not on the card.

#include "CallHook.h"
#include "PullableCard.h"
#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>

using namespace Qt::StringLiterals;
using Kind = PullableCard::Kind;
using Return = PullableCard::Return;
using testing::ElementsAre;

namespace {

const QString ListName = u"mine"_s;

/// A phone with a card in it, media on both, and one playlist that names files of both.
class PhoneWithCard
{
public:
    enum class Index { OnPhone, OnCard };

    PhoneWithCard(Kind kind, Index index) : m_index(index), m_card(PullableCard::make(kind, m_phone.path(u"slot"_s)))
    {
        qputenv("CARD1_MOUNT_PATH", QFile::encodeName(m_card->path()));
        for (const char *name : {"a.mp3", "b/c.mp3"})
            m_phoneFiles.append(TestPhone::addFile(m_phone.phone() + u'/' + QLatin1String(name)));
        for (const char *name : {"1.mp3", "d/2.mp3", "d/3.mp3", "e/f/4.mp3"})
            m_cardFiles.append(TestPhone::addFile(m_card->path() + u'/' + QLatin1String(name)));
        open();
        library().setCurrentPlayingList(allFiles());
        EXPECT_EQ(library().savePlayList(ListName), 0);
        EXPECT_TRUE(refresh());
        EXPECT_EQ(library().getAllMedia().join(u' ').toStdString(), allFiles().join(u' ').toStdString());
        m_card->remember();
    }
    ~PhoneWithCard() { library().cancelRefreshMyLibrary(); }

    /// A library as after a start of the player.
    void open()
    {
        m_library = std::make_unique<MP_MyLibrary>(&m_engine);
        if (m_index == Index::OnCard) {
            EXPECT_TRUE(m_library->setWorkDirectory(m_card->path()));
        }
        QObject::connect(
            m_library.get(), &MP_MyLibrary::refreshContinue, m_library.get(),
            [this](UINT8 percent) {
                m_progress = percent;
                if (onProgress)
                    onProgress(percent);
            },
            Qt::DirectConnection);
    }

    /// \return whether it came to its end, told by a progress of 100
    bool refresh()
    {
        m_progress = -1;
        library().refreshMyLibrary();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (library().isMyLibraryRefreshing()) {
            if (std::chrono::steady_clock::now() > deadline)
                return false;
            QThread::yieldCurrentThread();
        }
        library().cancelRefreshMyLibrary();
        return m_progress == 100;
    }

    MP_MyLibrary &library() { return *m_library; }
    PullableCard &card() { return *m_card; }
    TableEngine &engine() { return m_engine; }
    const QStringList &phoneFiles() const { return m_phoneFiles; }
    const QStringList &cardFiles() const { return m_cardFiles; }
    QStringList allFiles() const { return m_phoneFiles + m_cardFiles; }

    std::function<void(int)> onProgress; ///< on the worker thread

private:
    Index m_index;
    TestPhone m_phone;
    TableEngine m_engine;
    std::unique_ptr<PullableCard> m_card;
    QStringList m_phoneFiles;
    QStringList m_cardFiles;
    std::atomic<int> m_progress = -1;
    std::unique_ptr<MP_MyLibrary> m_library;
};

using Index = PhoneWithCard::Index;

/// A phone whose settings name the card as the directory to start with, and which has its lists there.
class PhoneThatStarts
{
public:
    static constexpr char Saved[] = "http://history; radio; /a, /b";

    explicit PhoneThatStarts(Kind kind) : m_card(PullableCard::make(kind, m_phone.path(u"slot"_s)))
    {
        start();
        EXPECT_TRUE(library().setWorkDirectory(m_card->path()));
        library().addItemToHistory(u"http://history"_s);
        library().addItemToBookmark(u"radio"_s, u"http://radio"_s);
        library().setCurrentPlayingList({u"/a"_s, u"/b"_s});
        library().storeMyLibrary();
        m_library.reset();
        m_card->remember();
    }

    void start() { m_library = std::make_unique<MP_MyLibrary>(&m_engine); }
    void store() { library().storeAllList(); }
    /// What a library finds on the card.
    std::string savedLists()
    {
        start();
        EXPECT_EQ(library().getWorkDirectory(), m_card->path());
        return QStringList{library().getItemListOfHistory().join(u", "_s),
                           library().getItemListOfBookmark().join(u", "_s),
                           library().getCurrentPlayingList().join(u", "_s)}
            .join(u"; "_s)
            .toStdString();
    }
    MP_MyLibrary &library() { return *m_library; }
    PullableCard &card() { return *m_card; }
    /// A place for the lists that is not on the card.
    QString elsewhere() const { return m_phone.card2(); }

private:
    TestPhone m_phone;
    TableEngine m_engine;
    std::unique_ptr<PullableCard> m_card;
    std::unique_ptr<MP_MyLibrary> m_library;
};

std::string textOf(const QStringList &list)
{
    return list.join(u'\n').toStdString();
}

/// Whether \a some are of \a all, in their order.
bool isPartOf(const QStringList &some, const QStringList &all)
{
    auto at = all.begin();
    return std::all_of(some.begin(), some.end(), [&at, &all](const QString &one) {
        at = std::find(at, all.end(), one);
        return at != all.end() && (++at, true);
    });
}

class PulledCard : public testing::TestWithParam<Kind>
{
protected:
    void SetUp() override
    {
        const QString reason = PullableCard::whyNot(GetParam());
        if (!reason.isNull())
            GTEST_SKIP() << qPrintable(reason);
    }

    /// How many calls to the system \a operation makes while nothing goes wrong.
    template<typename Operation>
    static int callsOf(PhoneWithCard &phone, Operation operation)
    {
        CallHook::arm();
        operation(phone);
        return CallHook::disarm();
    }

    /// Refreshes while the card is pulled by whatever \a prepare sets up, then looks at all that lies on the phone.
    template<typename Prepare>
    static void expectPhoneWholeAfterRefresh(Prepare prepare)
    {
        PhoneWithCard phone(GetParam(), Index::OnPhone);
        prepare(phone);
        ASSERT_TRUE(phone.refresh());
        CallHook::disarm();
        phone.onProgress = nullptr;
        phone.engine().hook = nullptr;
        expectPhoneWhole(phone);
    }
    static void expectPhoneWhole(PhoneWithCard &phone)
    {
        const QStringList found = phone.library().getAllMedia();
        EXPECT_EQ(textOf(found.first(std::min(found.size(), phone.phoneFiles().size()))), textOf(phone.phoneFiles()));
        EXPECT_TRUE(isPartOf(found, phone.allFiles())) << textOf(found);
        EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()))
            << "playlists keep their paths";
        EXPECT_EQ(phone.library().savePlayList(u"saved while it is out"_s), 0);
    }
};

std::string nameOf(const testing::TestParamInfo<Kind> &info)
{
    return std::array{"Folder", "Detached", "ShutDown"}.at(static_cast<std::size_t>(info.param));
}

} // namespace

/// Nothing is mounted in a folder, a card that was shut down stays mounted, and its open files keep it from being put
/// back.
struct DetachedPulledCard : PulledCard
{
};

/// Root, as which cards are mounted, may write to any folder.
struct MountedPulledCard : PulledCard
{
};

TEST_P(PulledCard, BeforeAnyCallOfARefreshCostsThePhoneNothing)
{
    PhoneWithCard untroubled(GetParam(), Index::OnPhone);
    const int calls = callsOf(untroubled, [](PhoneWithCard &phone) { phone.refresh(); });
    ASSERT_GT(calls, 20) << "folders are walked and files are written";
    for (int number = 1; number <= calls && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        expectPhoneWholeAfterRefresh(
            [number](PhoneWithCard &phone) { CallHook::arm(number, [&phone] { phone.card().pull(); }); });
    }
}

TEST_P(PulledCard, DuringAnyProbeCostsThePhoneNothing)
{
    for (const QString &call : {u"kind 1.mp3"_s, u"info 2.mp3"_s, u"kind 4.mp3"_s, u"finish"_s}) {
        SCOPED_TRACE(qPrintable(call));
        expectPhoneWholeAfterRefresh([&call](PhoneWithCard &phone) {
            phone.engine().hook = [&phone, &call](const QString &now) {
                if (now == call)
                    phone.card().pull();
                // The next question is about a file that is not there any more.
                phone.engine().hook = now == call ? nullptr : phone.engine().hook;
            };
        });
    }
}

TEST_P(PulledCard, BetweenTwoProbesCostsThePhoneNothing)
{
    // Six files: a report follows each.
    for (const int percent : {0, 33, 50, 83}) {
        SCOPED_TRACE(percent);
        expectPhoneWholeAfterRefresh([percent](PhoneWithCard &phone) {
            phone.onProgress = [&phone, percent](int now) {
                if (now == percent)
                    phone.card().pull();
            };
        });
    }
}

TEST_P(PulledCard, IsIndexedAsItComesBack)
{
    for (const Return how : {Return::Same, Return::ReadOnly, Return::Empty}) {
        SCOPED_TRACE(static_cast<int>(how));
        PhoneWithCard phone(GetParam(), Index::OnPhone);
        phone.card().pull();
        ASSERT_TRUE(phone.refresh());
        phone.card().putBack(how);
        QStringList onCard = how == Return::Empty ? QStringList() : phone.cardFiles();
        ASSERT_TRUE(phone.refresh());
        EXPECT_EQ(textOf(phone.library().getAllMedia()), textOf(phone.phoneFiles() + onCard));
        if (how != Return::ReadOnly) {
            onCard.append(TestPhone::addFile(phone.card().path() + u"/z/other.mp3"_s));
            ASSERT_TRUE(phone.refresh());
            EXPECT_EQ(textOf(phone.library().getAllMedia()), textOf(phone.phoneFiles() + onCard));
        }
        EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()))
            << "playlists keep their paths";
    }
}

TEST_P(PulledCard, WithTheIndexOnItHasAllOfItWhenItComesBack)
{
    PhoneWithCard untroubled(GetParam(), Index::OnCard);
    const int calls = callsOf(untroubled, [](PhoneWithCard &phone) { phone.refresh(); });
    for (int number = 1; number <= calls && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        PhoneWithCard phone(GetParam(), Index::OnCard);
        CallHook::arm(number, [&phone] { phone.card().pull(); });
        ASSERT_TRUE(phone.refresh());
        CallHook::disarm();
        const QStringList left = phone.library().getAllMedia();
        EXPECT_TRUE(isPartOf(left, phone.allFiles())) << textOf(left);
        for (const QString &file : phone.phoneFiles())
            EXPECT_TRUE(QFile::exists(file));

        phone.card().putBack(Return::Same);
        phone.open();
        const QStringList found = phone.library().getAllMedia();
        EXPECT_TRUE(found.isEmpty() || isPartOf(found, phone.allFiles())) << textOf(found);
        EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()));
        ASSERT_TRUE(phone.refresh());
        EXPECT_EQ(textOf(phone.library().getAllMedia()), textOf(phone.allFiles()));
    }
}

TEST_P(PulledCard, BeforeAnyCallOfASaveHasTheOldListOrTheNew)
{
    const QStringList newItems = {u"/new/one.mp3"_s, u"http://new/two"_s};
    const auto save = [&newItems](PhoneWithCard &phone) {
        phone.library().setCurrentPlayingList(newItems);
        return phone.library().savePlayList(ListName);
    };
    PhoneWithCard untroubled(GetParam(), Index::OnCard);
    const int calls = callsOf(untroubled, save);
    ASSERT_GT(calls, 3);
    for (int number = 1; number <= calls && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        PhoneWithCard phone(GetParam(), Index::OnCard);
        CallHook::arm(number, [&phone] { phone.card().pull(); });
        const UINT8 result = save(phone);
        CallHook::disarm();
        EXPECT_THAT(result, testing::AnyOf(0, 1));

        phone.card().putBack(Return::Same);
        phone.open();
        const QStringList kept = phone.library().loadPlayList(ListName);
        EXPECT_THAT(textOf(kept), testing::AnyOf(textOf(phone.allFiles()), textOf(newItems)));
        if (result == 0 && phone.card().keepsWhatIsWritten()) {
            EXPECT_EQ(textOf(kept), textOf(newItems)) << "what was said to be saved is on the card";
        }
        EXPECT_EQ(save(phone), 0);
        EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(newItems));
    }
}

TEST_P(PulledCard, BeforeAnyCallOfAStartKeepsTheListsThatAreOnIt)
{
    PhoneThatStarts untroubled(GetParam());
    CallHook::arm();
    untroubled.start();
    const int calls = CallHook::disarm();
    ASSERT_GT(calls, 10);
    for (int number = 1; number <= calls && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        PhoneThatStarts phone(GetParam());
        CallHook::arm(number, [&phone] { phone.card().pull(); });
        phone.start();
        CallHook::disarm();
        phone.card().putBack(Return::Same);
        phone.store();
        EXPECT_EQ(phone.savedLists(), PhoneThatStarts::Saved);
    }
}

TEST_P(PulledCard, ThatComesAfterTheStartKeepsTheListsThatAreOnIt)
{
    PhoneThatStarts phone(GetParam());
    phone.card().pull();
    phone.start();
    phone.card().putBack(Return::Same);
    phone.store();
    EXPECT_EQ(phone.savedLists(), PhoneThatStarts::Saved);
}

TEST_P(DetachedPulledCard, ChosenAgainWhenItComesAfterTheStartKeepsItsLists)
{
    PhoneThatStarts phone(GetParam());
    phone.card().pull();
    phone.start();
    ASSERT_EQ(phone.library().getWorkDirectory(), phone.card().path()) << "the folder below it";
    phone.card().putBack(Return::Same);
    EXPECT_TRUE(phone.library().setWorkDirectory(phone.card().path()));
    phone.store();
    EXPECT_EQ(phone.savedLists(), PhoneThatStarts::Saved);
}

TEST_P(DetachedPulledCard, ChangedForAnotherOneAfterItWasChosenLeavesThatOnesLists)
{
    PhoneThatStarts phone(GetParam());
    phone.card().pull();
    phone.start();
    EXPECT_TRUE(phone.library().setWorkDirectory(phone.elsewhere()));
    phone.library().storeConfig();
    phone.start();
    ASSERT_EQ(phone.library().getWorkDirectory(), phone.elsewhere());
    phone.card().putBack(Return::Empty);
    EXPECT_TRUE(phone.library().setWorkDirectory(phone.card().path()));
    phone.card().pull();
    phone.card().putBack(Return::Same);
    phone.library().storeMyLibrary();
    EXPECT_EQ(phone.savedLists(), PhoneThatStarts::Saved);
}

TEST_P(DetachedPulledCard, ChangedForAnotherOneBetweenStartAndStoreKeepsTheListsOfBoth)
{
    PhoneThatStarts phone(GetParam());
    phone.card().pull();
    phone.card().putBack(Return::Empty);
    phone.start();
    phone.library().addItemToHistory(u"http://theirs"_s);
    phone.store();
    const std::string theirs = phone.savedLists();
    EXPECT_NE(theirs, PhoneThatStarts::Saved);

    phone.start();
    phone.card().pull();
    phone.card().putBack(Return::Same);
    phone.store();
    EXPECT_EQ(phone.savedLists(), PhoneThatStarts::Saved);
    phone.card().pull();
    phone.card().putBack(Return::Empty);
    EXPECT_EQ(phone.savedLists(), theirs);
}

TEST_P(DetachedPulledCard, WithTheIndexOnItLeavesNoWorkDirectoryUntilItComesBack)
{
    PhoneWithCard phone(GetParam(), Index::OnCard);
    phone.card().pull();
    EXPECT_EQ(phone.library().savePlayList(u"while it is out"_s), 1);
    EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), "");
    EXPECT_EQ(textOf(phone.library().getAllMedia()), "");
    phone.library().storeAllList();
    ASSERT_TRUE(phone.refresh());
    EXPECT_TRUE(QDir(phone.card().path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        << "what is written there would be hidden by the card";

    phone.card().putBack(Return::Same);
    EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()));
    EXPECT_EQ(phone.library().savePlayList(u"when it is back"_s), 0);
}

TEST_P(DetachedPulledCard, WithTheIndexOnItDuringAProbeLeavesNothingBelowIt)
{
    for (const QString &call : {u"kind 1.mp3"_s, u"info 2.mp3"_s, u"finish"_s}) {
        SCOPED_TRACE(qPrintable(call));
        PhoneWithCard phone(GetParam(), Index::OnCard);
        bool isPulled = false;
        phone.engine().hook = [&](const QString &now) {
            if (now == call && !std::exchange(isPulled, true))
                phone.card().pull();
        };
        ASSERT_TRUE(phone.refresh());
        EXPECT_TRUE(isPulled);
        EXPECT_TRUE(QDir(phone.card().path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
            << "what is written there would be hidden by the card";
        phone.card().putBack(Return::Same);
        EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()));
    }
}

TEST_P(DetachedPulledCard, ChangedForAnotherOneBeforeAnyCallOfARefreshLeavesThatOneWhole)
{
    const QStringList theirs = {u"/theirs/one.mp3"_s};
    const auto prepareOther = [&theirs](PhoneWithCard &phone) {
        phone.card().pull();
        phone.card().putBack(Return::Empty);
        phone.open();
        phone.library().setCurrentPlayingList(theirs);
        EXPECT_EQ(phone.library().savePlayList(u"theirs"_s), 0);
        EXPECT_TRUE(phone.refresh());
        phone.card().pull();
        phone.card().putBack(Return::Same);
        phone.open();
    };
    PhoneWithCard untroubled(GetParam(), Index::OnCard);
    const int calls = callsOf(untroubled, [](PhoneWithCard &phone) { phone.refresh(); });
    for (int number = 1; number <= calls && !HasFailure(); ++number) {
        SCOPED_TRACE(number);
        PhoneWithCard phone(GetParam(), Index::OnCard);
        prepareOther(phone);
        CallHook::arm(number, [&phone] {
            phone.card().pull();
            phone.card().putBack(Return::Empty);
        });
        ASSERT_TRUE(phone.refresh());
        CallHook::disarm();

        phone.open();
        const QStringList found = phone.library().getAllMedia();
        EXPECT_TRUE(isPartOf(found, phone.allFiles())) << textOf(found);
        EXPECT_EQ(textOf(phone.library().loadPlayList(u"theirs"_s)), textOf(theirs));
        ASSERT_TRUE(phone.refresh());
        EXPECT_EQ(textOf(phone.library().getAllMedia()), textOf(phone.phoneFiles()));
    }
}

TEST_P(MountedPulledCard, WithTheIndexOnItAndComeBackReadOnlyIsReadAndRefusesToBeWritten)
{
    PhoneWithCard phone(GetParam(), Index::OnCard);
    phone.card().pull();
    ASSERT_TRUE(phone.refresh());
    phone.card().putBack(Return::ReadOnly);
    phone.open();
    EXPECT_EQ(textOf(phone.library().getAllMedia()), textOf(phone.allFiles()));
    EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()));
    EXPECT_EQ(phone.library().savePlayList(ListName), 1);
    EXPECT_FALSE(phone.library().renamePlayList(ListName, u"other"_s));
    ASSERT_TRUE(phone.refresh());
    EXPECT_EQ(textOf(phone.library().loadPlayList(ListName)), textOf(phone.allFiles()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, PulledCard, testing::Values(Kind::Folder, Kind::Detached, Kind::ShutDown), nameOf);
INSTANTIATE_TEST_SUITE_P(Kinds, DetachedPulledCard, testing::Values(Kind::Detached), nameOf);
INSTANTIATE_TEST_SUITE_P(Kinds, MountedPulledCard, testing::Values(Kind::Detached, Kind::ShutDown), nameOf);
