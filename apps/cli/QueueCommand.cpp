// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "KeptLists.h"
#include "QueueAdd.h"
#include "QueueView.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr int LastNumber = 65535;

struct QueueOptions
{
    int number = 0; ///< of an item, from 1
    std::string mode;
};

using QueueAction = ExitStatus (*)(Session &session, const QueueOptions &options);
using Edit = bool (MP_MyLibrary::*)(unsigned short index);

unsigned short indexOf(const QueueOptions &options)
{
    return static_cast<unsigned short>(options.number - 1);
}

ExitStatus failWithoutItem(Session &session, const QueueOptions &options)
{
    return fail(u"there is no item %1 in the queue of %2; see 'marvola queue show'"_s.arg(options.number)
                    .arg(session.library().getCurrentPlayingListNumber()));
}

void printActive(const QueueView &queue)
{
    printLine(queue.items.value(queue.active));
}

ExitStatus show(Session &session, const QueueOptions &)
{
    printQueue(session, queueOf(session.library()));
    return ExitStatus::Done;
}

ExitStatus clear(Session &session, const QueueOptions &)
{
    session.library().clearCurrentPlayingList();
    return keepQueueQuietly(session);
}

template<Edit edit>
ExitStatus editItem(Session &session, const QueueOptions &options)
{
    if (!(session.library().*edit)(indexOf(options))) {
        return failWithoutItem(session, options);
    }
    return keepQueueQuietly(session);
}

ExitStatus play(Session &session, const QueueOptions &options)
{
    MP_MyLibrary &library = session.library();
    if (indexOf(options) >= library.getCurrentPlayingListNumber()) {
        return failWithoutItem(session, options);
    }
    constexpr bool PickFirst = true;
    library.setActiveItem(indexOf(options), PickFirst);
    return keepQueue(session, printActive);
}

template<QString (MP_MyLibrary::*move)()>
ExitStatus moveTo(Session &session, const QString &word)
{
    if (session.library().getCurrentPlayingListNumber() == 0) {
        return fail(u"the queue is empty; see 'marvola queue add --help'"_s);
    }
    if ((session.library().*move)().isNull()) {
        return fail(u"there is no %1 item; choose one with 'marvola queue play', or turn repeat on"_s.arg(word));
    }
    return keepQueue(session, printActive);
}

ExitStatus next(Session &session, const QueueOptions &)
{
    return moveTo<&MP_MyLibrary::getNextItem>(session, u"next"_s);
}

ExitStatus previous(Session &session, const QueueOptions &)
{
    return moveTo<&MP_MyLibrary::getPrevItem>(session, u"previous"_s);
}

template<void (MP_MyLibrary::*setMode)(bool)>
ExitStatus changeMode(Session &session, const QueueOptions &options)
{
    (session.library().*setMode)(options.mode == "on");
    return keepQueueQuietly(session);
}

ExitStatus randomize(Session &session, const QueueOptions &)
{
    session.library().randomizePlayList();
    return keepQueueQuietly(session);
}

/// One subcommand of the queue, and what it takes.
struct QueueStep
{
    enum class Takes { Nothing, Number, Mode };

    const char *name;
    const char *help;
    Takes takes;
    QueueAction step;
    const char *example;
};

constexpr QueueStep Steps[] = {
    {"show", "Print the queue; the active item is marked", QueueStep::Takes::Nothing, show, "show --json"},
    {"clear", "Remove every item; the queue keeps its playlist's name", QueueStep::Takes::Nothing, clear, "clear"},
    {"remove", "Remove an item", QueueStep::Takes::Number, editItem<&MP_MyLibrary::removeItemFromPlayList>, "remove 3"},
    {"up", "Move an item one place to the front", QueueStep::Takes::Number, editItem<&MP_MyLibrary::itemUp>, "up 3"},
    {"down", "Move an item one place to the back", QueueStep::Takes::Number, editItem<&MP_MyLibrary::itemDown>,
     "down 3"},
    {"play", "Make an item the active one and print it", QueueStep::Takes::Number, play, "play 3"},
    {"next", "Go on to the next item and print it", QueueStep::Takes::Nothing, next, "next"},
    {"prev", "Go back to the previous item and print it", QueueStep::Takes::Nothing, previous, "prev"},
    {"shuffle", "Play in random order, or not", QueueStep::Takes::Mode, changeMode<&MP_MyLibrary::setShuffle>,
     "shuffle on"},
    {"repeat", "Begin again at the end, or not", QueueStep::Takes::Mode, changeMode<&MP_MyLibrary::setRepeat>,
     "repeat off"},
    {"randomize", "Put the items themselves into random order", QueueStep::Takes::Nothing, randomize, "randomize"},
};

void declareStep(CLI::App &command, Action &action, const QueueStep &step, const std::shared_ptr<QueueOptions> &options)
{
    CLI::App *sub = command.add_subcommand(step.name, step.help);
    if (step.takes == QueueStep::Takes::Number) {
        sub->add_option("number", options->number, "The item, as 'queue show' counts it")
            ->required()
            ->check(CLI::Range(1, LastNumber));
    } else if (step.takes == QueueStep::Takes::Mode) {
        sub->add_option("mode", options->mode, "on or off")->required()->check(CLI::IsMember({"on", "off"}));
    }
    sub->footer(std::string("Example:\n  marvola queue ") + step.example);
    sub->callback([&action, options, run = step.step] {
        action = [options, run](Session &session) {
            const ExitStatus ready = requireListFile(session);
            return ready == ExitStatus::Done ? run(session, *options) : ready;
        };
    });
}

} // namespace

void declareQueue(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("queue", "Fill, change and step through the list being played");
    declareQueueAdd(*command, action);
    auto options = std::make_shared<QueueOptions>();
    for (const QueueStep &step : Steps) {
        declareStep(*command, action, step, options);
    }
    command->require_subcommand(1);
    command->footer("Examples:\n"
                    "  marvola queue add --artist 'Ada Lovelace'\n"
                    "  marvola queue show\n"
                    "  marvola queue play 2\n"
                    "  marvola queue next");
}

} // namespace marvola
