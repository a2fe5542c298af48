// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_MEDIAQUERY_H
#define MARVOLA_CLI_MEDIAQUERY_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <string>
#include <vector>

class MP_MyLibrary;

namespace CLI {
class App;
}

namespace marvola {

/// Which of the library's lists the command line asks for; empty where it says nothing.
struct MediaQuery
{
    std::string whole; ///< the whole of one kind
    std::string artist;
    std::string album;
    std::string genre;
};

/// The kinds that can be asked for as a whole.
std::vector<std::string> wholeListNames();
/// Those of them that consist of media files.
std::vector<std::string> fileListNames();

/// Adds the options for the files of one artist, album or genre.
void declareSelections(CLI::App &group, MediaQuery &query);

/// Whether \a query asks for anything.
bool asksForSomething(const MediaQuery &query);

/// What \a query asks for, which becomes the library's last item list.
/// \param problem receives a line for the user when there is no result
std::optional<QStringList> runQuery(MP_MyLibrary &library, const MediaQuery &query, QString &problem);

} // namespace marvola

#endif
