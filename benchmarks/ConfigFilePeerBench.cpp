// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileOfKeys.h"

#include <QtCore/QFile>
#include <QtCore/QSettings>

#include <glib.h>

#include <memory>

/// The same work on files of groups and keys by those who do it elsewhere: GLib's GKeyFile and Qt's QSettings.
namespace {

constexpr auto DurableContents =
    static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
constexpr int FileMode = 0666;

class KeyFile
{
public:
    bool load(const QString &path)
    {
        return g_key_file_load_from_file(m_file.get(), QFile::encodeName(path).constData(), G_KEY_FILE_KEEP_COMMENTS,
                                         nullptr) != 0;
    }
    void set(const QString &group, const QString &key, const QString &value)
    {
        g_key_file_set_string(m_file.get(), group.toUtf8().constData(), key.toUtf8().constData(),
                              value.toUtf8().constData());
    }
    QString value(const QString &group, const QString &key) const
    {
        const std::unique_ptr<char, decltype(&g_free)> text(
            g_key_file_get_string(m_file.get(), group.toUtf8().constData(), key.toUtf8().constData(), nullptr), g_free);
        return QString::fromUtf8(text.get());
    }
    bool save(const QString &path) const
    {
        gsize length = 0;
        const std::unique_ptr<char, decltype(&g_free)> text(g_key_file_to_data(m_file.get(), &length, nullptr), g_free);
        return g_file_set_contents_full(QFile::encodeName(path).constData(), text.get(), static_cast<gssize>(length),
                                        DurableContents, FileMode, nullptr) != 0;
    }

private:
    std::unique_ptr<GKeyFile, decltype(&g_key_file_free)> m_file{g_key_file_new(), g_key_file_free};
};

class GLibFile : public FileOfKeys
{
public:
    void SetUp(benchmark::State &state) override
    {
        FileOfKeys::SetUp(state);
        // Not by the peer itself, which takes seconds for the largest.
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            state.SkipWithError("the file cannot be written");
        file.write('[' + group.toUtf8() + "]\n");
        for (qsizetype number = 0; number < keys.size(); ++number)
            file.write(keys.at(number).toUtf8() + '=' + valuesOf(0).at(number).toUtf8() + '\n');
    }

protected:
    bool rewrite(int round) const
    {
        KeyFile file;
        for (qsizetype number = 0; number < keys.size(); ++number)
            file.set(group, keys.at(number), valuesOf(round).at(number));
        return file.save(path);
    }
};

BENCHMARK_DEFINE_F(GLibFile, Load)(benchmark::State &state)
{
    for (auto _ : state) {
        KeyFile file;
        if (!file.load(path))
            state.SkipWithError("the file cannot be read");
        benchmark::DoNotOptimize(file.value(group, keys.constLast()));
    }
}

BENCHMARK_DEFINE_F(GLibFile, LoadAndReadEveryKey)(benchmark::State &state)
{
    for (auto _ : state) {
        KeyFile file;
        if (!file.load(path))
            state.SkipWithError("the file cannot be read");
        for (const QString &key : std::as_const(keys))
            benchmark::DoNotOptimize(file.value(group, key));
    }
}

BENCHMARK_DEFINE_F(GLibFile, RewriteEveryKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (!rewrite(++round))
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_DEFINE_F(GLibFile, ChangeOneKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        KeyFile file;
        const bool isRead = file.load(path);
        file.set(group, keys.constFirst(), valuesOf(++round).constFirst());
        if (!isRead || !file.save(path))
            state.SkipWithError("the file cannot be written");
    }
}

class QtFile : public FileOfKeys
{
public:
    void SetUp(benchmark::State &state) override
    {
        FileOfKeys::SetUp(state);
        if (!rewrite(0))
            state.SkipWithError("the file cannot be written");
    }

protected:
    bool rewrite(int round) const
    {
        QSettings file(path, QSettings::IniFormat);
        file.beginGroup(group);
        for (qsizetype number = 0; number < keys.size(); ++number)
            file.setValue(keys.at(number), valuesOf(round).at(number));
        file.endGroup();
        file.sync();
        return file.status() == QSettings::NoError;
    }
};

BENCHMARK_DEFINE_F(QtFile, Load)(benchmark::State &state)
{
    for (auto _ : state) {
        QSettings file(path, QSettings::IniFormat);
        file.beginGroup(group);
        benchmark::DoNotOptimize(file.value(keys.constLast()).toString());
    }
}

BENCHMARK_DEFINE_F(QtFile, RewriteEveryKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (!rewrite(++round))
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_REGISTER_F(GLibFile, Load)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(GLibFile, LoadAndReadEveryKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(GLibFile, RewriteEveryKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(GLibFile, ChangeOneKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(QtFile, Load)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(QtFile, RewriteEveryKey)->Apply(countsOfKeys);

} // namespace
