// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FullIndex.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <memory>
#include <sqlite3.h>

/// The same questions to a table with an index on the artist, in a database that is opened for each.
namespace {

class Database
{
public:
    explicit Database(const QString &path)
    {
        sqlite3 *handle = nullptr;
        sqlite3_open(QFile::encodeName(path).constData(), &handle);
        m_handle.reset(handle);
    }
    bool run(const char *command) { return sqlite3_exec(m_handle.get(), command, nullptr, nullptr, nullptr) == 0; }
    /// The first column of what \a query gives, with \a texts in the places of its "?".
    QStringList ask(const char *query, const QStringList &texts = {})
    {
        sqlite3_stmt *prepared = nullptr;
        sqlite3_prepare_v2(m_handle.get(), query, -1, &prepared, nullptr);
        const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement(prepared, sqlite3_finalize);
        for (int i = 0; i < texts.size(); ++i) {
            const auto size = static_cast<int>(texts.at(i).size() * 2);
            sqlite3_bind_text16(prepared, i + 1, texts.at(i).utf16(), size, nullptr);
        }
        QStringList answer;
        while (sqlite3_step(prepared) == SQLITE_ROW)
            answer.append(QString::fromUtf16(static_cast<const char16_t *>(sqlite3_column_text16(prepared, 0)),
                                             sqlite3_column_bytes16(prepared, 0) / 2));
        return answer;
    }

private:
    std::unique_ptr<sqlite3, decltype(&sqlite3_close)> m_handle{nullptr, sqlite3_close};
};

class SqliteIndex : public FullIndex
{
public:
    void SetUp(benchmark::State &state) override
    {
        FullIndex::SetUp(state);
        Database database(path);
        bool isDone = database.run("PRAGMA encoding = 'UTF-16le'; CREATE TABLE files (path TEXT, type INTEGER, artist "
                                   "TEXT, album TEXT, genre TEXT); BEGIN");
        for (int number = 0; number < count; ++number)
            database.ask("INSERT INTO files VALUES (?, 1, ?, 'Album', 'Genre')", {pathOf(number), artistOf(number)});
        isDone = isDone && database.run("CREATE INDEX byArtist ON files (artist); COMMIT");
        if (!isDone || database.ask("SELECT path FROM files").size() != count)
            state.SkipWithError("the database cannot be written");
    }
};

BENCHMARK_DEFINE_F(SqliteIndex, OneArtist)(benchmark::State &state)
{
    const QString wanted = wantedArtist();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            Database(path).ask("SELECT path FROM files WHERE type = 1 AND artist = ? ORDER BY rowid", {wanted}));
}

BENCHMARK_DEFINE_F(SqliteIndex, AllMedia)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Database(path).ask("SELECT path FROM files ORDER BY rowid"));
}

BENCHMARK_REGISTER_F(SqliteIndex, OneArtist)->Apply(countsOfRecords);
BENCHMARK_REGISTER_F(SqliteIndex, AllMedia)->Apply(countsOfRecords);

} // namespace
