// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "LinkRun.h"

#include "ProfilePrompt.h"
#include "Session.h"
#include "SettingsTable.h"
#include "Text.h"

#include <marvola/ConfigFile.h>
#include <marvola/NetworkProfile.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr int Broken = 4;

struct StatusWord
{
    int status;
    QLatin1String word;
};

/// What the library tells about the link.
constexpr StatusWord StatusWords[] = {
    {2, QLatin1String("failed")}, {3, QLatin1String("opening")}, {Broken, QLatin1String("broken")}};

QString progressWord(int status)
{
    const auto *known = std::find_if(std::begin(StatusWords), std::end(StatusWords),
                                     [status](const StatusWord &candidate) { return candidate.status == status; });
    return known == std::end(StatusWords) ? u"status %1"_s.arg(status) : QString(known->word);
}

} // namespace

LinkRun::LinkRun(LinkRequest request)
    : m_request(std::move(request)), m_watch({SIGINT, SIGTERM, SIGHUP}, [this] { interrupt(); })
{
    DataSessionManager::setFactory([this] {
        m_service = new LinkService;
        return m_service.data();
    });
    setNetworkProfileChooser([this](QString &name) { return chooseProfile(name); });
}

LinkRun::~LinkRun()
{
    DataSessionManager::setFactory({});
    setNetworkProfileChooser({});
}

ExitStatus LinkRun::run(Session &session)
{
    MP_MyLibrary &library = session.library();
    if (!m_request.profile.isEmpty()) {
        library.setProfileName(m_request.profile);
    }
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus, &m_loop,
                     [this](int status) { showStatus(status); });
    const bool isUp = library.setupConnection();
    if (m_isInterrupted) {
        return ExitStatus::Interrupted;
    }
    if (!isUp) {
        return failToOpen(library.getProfileName());
    }
    if (m_isChosen) {
        keepChoice(session);
    }
    tellInterface(session);
    return m_request.endsOnce ? ExitStatus::Done : hold(library.getProfileName());
}

int LinkRun::chooseProfile(QString &name)
{
    constexpr int Chosen = 0;
    constexpr int NoneChosen = 1;
    if (!ProfilePrompt::isPossible()) {
        m_problem = u"no network profile is set, and there is no terminal to choose one on: give --profile NAME, or "
                    "'marvola settings set profile NAME'"_s;
        return NoneChosen;
    }
    const QStringList names = m_service->profileNames();
    if (names.isEmpty()) {
        m_problem = u"no network profile is set, and NetworkManager offers none to choose from: check that it runs and "
                    "has one, see 'nmcli connection'"_s;
        return NoneChosen;
    }
    const QString answer = ProfilePrompt(names).ask(m_loop);
    if (answer.isNull()) {
        m_problem = u"no network profile was chosen; choose one, or give --profile NAME"_s;
        return NoneChosen;
    }
    name = answer;
    m_isChosen = true;
    return Chosen;
}

void LinkRun::interrupt()
{
    m_isInterrupted = true;
    if (m_service) {
        m_service->giveUp();
    }
    m_loop.quit();
}

void LinkRun::showStatus(int status)
{
    tellProgress(u"connect: "_s + progressWord(status));
    if (status == Broken) {
        m_isBroken = true;
        m_loop.quit();
    }
}

ExitStatus LinkRun::failToOpen(const QString &profile) const
{
    if (!m_problem.isEmpty()) {
        return fail(m_problem);
    }
    const QString failure = m_service ? m_service->failure() : QString();
    return fail(u"cannot open a link with the profile '%1': %2"_s.arg(
        profile, failure.isNull() ? u"it broke at once; see NetworkManager's journal"_s : failure));
}

void LinkRun::keepChoice(Session &session) const
{
    session.library().storeMyLibrary();
    const Setting *profile = settingCalled(u"profile"_s);
    const QString stored = ConfigFile(session.settingsFile(), false).readEntry(profile->group, profile->entry);
    if (stored != storedText(*profile, session)) {
        note(u"cannot keep the profile in %1, so it will be asked for again: check that the file can be written"_s.arg(
            session.settingsFile()));
    }
}

void LinkRun::tellInterface(Session &session) const
{
    const QString profile = session.library().getProfileName();
    const QString interface = m_service ? m_service->interfaceName() : QString();
    if (session.wantsJson()) {
        printJson(QJsonObject{{u"profile"_s, wellFormed(profile)},
                              {u"interface"_s, interface.isNull() ? QJsonValue() : QJsonValue(wellFormed(interface))},
                              {u"status"_s, u"connected"_s}});
    } else {
        printLine(u"connected: %1 on %2"_s.arg(profile, interface.isNull() ? u"an unknown interface"_s : interface));
    }
    // Whoever reads this acts on it while the link is held.
    flushOutput();
}

ExitStatus LinkRun::hold(const QString &profile)
{
    if (!m_isBroken) {
        m_loop.exec();
    }
    if (m_isBroken) {
        return fail(u"the link with the profile '%1' was broken; connect again"_s.arg(profile));
    }
    return ExitStatus::Done; // ended by the user, as a link that is held has to end
}

} // namespace marvola
