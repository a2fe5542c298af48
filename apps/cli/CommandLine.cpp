// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandLine.h"

#include <CLI/CLI.hpp>

namespace marvola {

namespace {

constexpr char Footer[] =
    "Examples:\n"
    "  marvola refresh\n"
    "  marvola show\n"
    "  marvola list --artist 'Ada Lovelace' --json\n"
    "  marvola refresh --help\n"
    "\n"
    "Exit status:\n"
    "  0    done, also when a limit left files out\n"
    "  1    failed, also when what is named is not there\n"
    "  2    the command line is wrong: a word unknown or missing, a value or a name that cannot be\n"
    "  130  stopped by the user\n"
    "\n"
    "Environment:\n"
    "  TROVE_DATA_PATH         media in the phone's memory, unless --data is given\n"
    "  CARD1_MOUNT_PATH        media on the first memory card, unless --card1 is given\n"
    "  CARD2_MOUNT_PATH        media on the second memory card, unless --card2 is given\n"
    "  JUV_APP_WRITE_PATH      the library's own files, unless --work is given\n"
    "  HOME                    holds your music and the library's own files when nothing else names them\n"
    "  XDG_DATA_HOME           holds marvola/, the library's own files (~/.local/share when not set)\n"
    "  XDG_CONFIG_HOME         holds user-dirs.dirs, which names your music directory\n"
    "  XDG_STATE_HOME          holds marvola/crash-note (~/.local/state when not set)\n"
    "  XDG_CACHE_HOME          holds marvola/answers (~/.cache when not set)\n"
    "  NO_COLOR                no colours when set to anything but an empty text\n"
    "  TERM                    no colours and no progress bar when set to dumb\n"
    "  LC_ALL, LC_MESSAGES, LANG  the language of the places' names and of missing tags\n"
    "  MARVOLA_TRANSLATIONS    the directory with the translated texts\n"
    "  DBUS_SYSTEM_BUS_ADDRESS  the system bus that 'connect' uses\n"
    "\n"
    "Files:\n"
    "  setup/juv_marvola.cfg   the settings, in the directory of the library's own files\n"
    "  .marvola.list           the lists, in that directory or the one that the settings name\n"
    "  .marvola.info           the index, beside the lists\n"
    "  ~/.local/state/marvola/crash-note  files that a refresh died over; remove it to have them read again\n"
    "  ~/.cache/marvola/answers  what was found out about files; remove it to have all read again\n"
    "  /tmp/Marvola_GPRS_Link  the interface of the link that 'connect' has opened";

void declareGlobalOptions(CLI::App &app, GlobalOptions &options)
{
    app.add_option("--data", options.places.data,
                   "Media in the phone's memory (TROVE_DATA_PATH; your music directory)");
    app.add_option("--card1", options.places.card1, "Media on the first memory card (CARD1_MOUNT_PATH)");
    app.add_option("--card2", options.places.card2, "Media on the second memory card (CARD2_MOUNT_PATH)");
    app.add_option("--work", options.places.work,
                   "The library's own files; made when missing (JUV_APP_WRITE_PATH; ~/.local/share/marvola)");
    for (const char *name : {"--data", "--card1", "--card2", "--work"}) {
        app.get_option(name)->type_name("DIR");
    }
    app.add_flag_callback(
        "--json", [&options] { options.style = OutputStyle::Json; }, "Print JSON");
    app.add_flag_callback(
        "--quiet", [&options] { options.talk = Talk::Quiet; },
        "Print what was asked for and errors, but no progress and no confirmations");
    app.set_version_flag("--version", "marvola " MARVOLA_VERSION);
}

} // namespace

void declareCommandLine(CLI::App &app, GlobalOptions &options, Action &action)
{
    app.fallthrough();
    app.require_subcommand(1);
    declareGlobalOptions(app, options);
    declareCommands(app, action);
    app.footer(Footer);
}

} // namespace marvola
