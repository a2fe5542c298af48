// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Player.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDirIterator>
#include <QtCore/QThread>

#include <array>
#include <chrono>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int StepsOfARound = 20;
constexpr int FewItems = 40;

void copyFiles(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString copy = to + file.mid(from.size());
        QDir().mkpath(QFileInfo(copy).path());
        QFile::copy(file, copy);
    }
}

} // namespace

Player::Player(const QString &samples, std::uint_fast32_t seed) : m_random(seed)
{
    copyFiles(samples + u"/phone"_s, m_phone.phone());
    copyFiles(samples + u"/card"_s, m_phone.card1());
    QDir().mkpath(m_phone.path(u"other"_s));
    copyFiles(samples + u"/card/audio"_s, m_phone.path(u"other"_s));
    // Neither place has its own limits in the way.
    ConfigFile settings(m_phone.settingsFile(), false);
    for (const QString &key :
         {u"MaxNumOfList"_s, u"MaxNumOfItem"_s, u"MaxNumOfBookmark"_s, u"MaxNumOfHistory"_s, u"MaxNumOfMediaFile"_s})
        settings.writeEntry(u"MediaLimitationItem"_s, key, 500);
    settings.flush();
    open();
}

Player::~Player()
{
    m_library->cancelRefreshMyLibrary();
}

QString Player::playRound()
{
    constexpr std::array<Step, 12> Steps = {&Player::refresh,  &Player::cancelRefresh, &Player::save,
                                            &Player::load,     &Player::rename,        &Player::remove,
                                            &Player::edit,     &Player::bookmark,      &Player::storeAndRestart,
                                            &Player::pullCard, &Player::returnCard,    &Player::returnOtherCard};
    for (int step = 0; step < StepsOfARound; ++step) {
        const QString problem = (this->*Steps.at(static_cast<std::size_t>(draw(Steps.size()))))();
        if (!problem.isEmpty())
            return problem;
    }
    // Every round ends alike, so that what is in use then can be compared.
    m_library->clearCurrentPlayingList();
    m_found.clear();
    return verifyLists();
}

QString Player::refresh()
{
    m_progress = -1;
    m_library->refreshMyLibrary();
    if (!waitForRefresh() || m_progress != 100)
        return u"a refresh ends with 100, not %1"_s.arg(m_progress.load());
    m_found = m_library->getAllMedia();
    return m_found.isEmpty() ? u"the phone's files are found"_s : QString();
}

QString Player::cancelRefresh()
{
    m_progress = -1;
    m_library->refreshMyLibrary();
    QThread::usleep(static_cast<unsigned long>(draw(20'000)));
    m_library->cancelRefreshMyLibrary();
    return m_progress == 100 ? QString() : u"a cancelled refresh ends with 100"_s;
}

QString Player::save()
{
    QStringList items = m_found.mid(0, draw(FewItems));
    for (int number = draw(FewItems); number > 0; --number)
        items.append(u"http://radio.example/%1"_s.arg(number));
    if (items.isEmpty())
        return {};
    m_library->setCurrentPlayingList(items);
    const QString name = anyName();
    if (m_library->savePlayList(name) != 0)
        return u"a playlist is saved"_s;
    m_lists[name] = items;
    return {};
}

QString Player::load()
{
    const QString name = anyName();
    const bool isThere = m_lists.contains(name);
    const QStringList items = m_library->loadPlayList(name);
    return items == m_lists.value(name) && m_library->hasPlayList(name) == isThere ? QString()
                                                                                   : u"a playlist is as it was saved"_s;
}

QString Player::rename()
{
    const QString from = anyName();
    const QString to = anyName();
    const bool canBe = from == to || (m_lists.contains(from) && !m_lists.contains(to));
    if (m_library->renamePlayList(from, to) != canBe)
        return u"a playlist that is there gets a name that is free"_s;
    if (canBe && from != to)
        m_lists[to] = m_lists.take(from);
    return {};
}

QString Player::remove()
{
    const QString name = anyName();
    // Deleting what is not there costs the catalogue its entries.
    if (!m_lists.contains(name))
        return {};
    m_lists.remove(name);
    return m_library->deletePlayList(name) ? QString() : u"a playlist is deleted"_s;
}

QString Player::edit()
{
    QStringList items = {u"/a"_s, u"/b"_s, u"/c"_s};
    m_library->addItemsToPlayList(items);
    m_library->setShuffle(draw(2) == 0);
    m_library->setRepeat(draw(2) == 0);
    for (int times = draw(FewItems); times > 0; --times) {
        m_library->getNextItem();
        m_library->itemUp(static_cast<unsigned short>(draw(5)));
    }
    m_library->removeItemFromPlayList(0);
    return {};
}

QString Player::bookmark()
{
    m_library->addItemToBookmark(anyName(), u"http://radio.example/%1"_s.arg(draw(100)));
    m_library->addItemToHistory(u"http://radio.example/%1"_s.arg(draw(100)));
    return {};
}

QString Player::storeAndRestart()
{
    const auto kept = [this] {
        return std::make_tuple(m_library->getItemListOfHistory(), m_library->getItemListOfBookmark(),
                               m_library->getCurrentPlayingList(), m_library->getShuffle(), m_library->getRepeat(),
                               m_library->getVolume());
    };
    m_library->setVolume(static_cast<unsigned char>(draw(100)));
    const auto before = kept();
    m_library->storeMyLibrary();
    open();
    return kept() == before ? QString() : u"settings, history, bookmarks and current list are restored"_s;
}

/// Now and then while a refresh runs.
QString Player::pullCard()
{
    if (!isCardIn())
        return {};
    const bool isBusy = draw(2) == 0;
    m_progress = -1;
    if (isBusy)
        m_library->refreshMyLibrary();
    QThread::usleep(static_cast<unsigned long>(draw(10'000)));
    QDir().rename(m_phone.card1(), m_phone.path(u"pulled"_s));
    return waitForRefresh() && (!isBusy || m_progress == 100) ? QString() : u"a refresh survives a pulled card"_s;
}

QString Player::returnCard()
{
    if (isCardIn())
        return {};
    QDir().rename(m_phone.path(u"pulled"_s), m_phone.card1());
    return refresh();
}

/// The other card goes back into the drawer at once.
QString Player::returnOtherCard()
{
    if (isCardIn())
        return {};
    QDir().rename(m_phone.path(u"other"_s), m_phone.card1());
    const QString problem = refresh();
    QDir().rename(m_phone.card1(), m_phone.path(u"other"_s));
    return problem;
}

bool Player::isCardIn() const
{
    return QFileInfo::exists(m_phone.card1());
}

bool Player::waitForRefresh() const
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(120);
    while (m_library->isMyLibraryRefreshing()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        QThread::msleep(1);
    }
    m_library->cancelRefreshMyLibrary();
    return true;
}

QString Player::verifyLists() const
{
    QStringList names = m_library->getAllPlayLists();
    names.sort();
    if (names != m_lists.keys())
        return u"the catalogue holds every playlist, and no other"_s;
    for (auto list = m_lists.cbegin(); list != m_lists.cend(); ++list) {
        if (m_library->loadPlayList(list.key()) != *list)
            return u"every playlist is as it was saved"_s;
    }
    m_library->clearCurrentPlayingList();
    return {};
}

void Player::open()
{
    m_library = std::make_unique<MP_MyLibrary>(&m_engine);
    QObject::connect(
        m_library.get(), &MP_MyLibrary::refreshContinue, m_library.get(),
        [this](UINT8 percent) { m_progress = percent; }, Qt::DirectConnection);
}
