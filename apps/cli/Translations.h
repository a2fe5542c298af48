// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_TRANSLATIONS_H
#define MARVOLA_CLI_TRANSLATIONS_H

class QTranslator;

namespace marvola {

/// Loads the library's texts in the language of the user's locale, else in English, into \a translator, and installs
/// it. The texts are looked for in the directory that MARVOLA_TRANSLATIONS names; without it, where they are installed
/// and in the build tree, both relative to the program. Without any the texts' ids show.
void installTranslations(QTranslator &translator);

} // namespace marvola

#endif
