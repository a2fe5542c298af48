// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/CachingPlayerEngine.h>
#include <marvola/MP_MyLibrary.h>
#include <marvola/PlayerEngine.h>

#include "PlainFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QSemaphore>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

/// What the library itself takes of a start and of a refresh: the engine answers at once, and the files are empty.
namespace {

using namespace Qt::StringLiterals;

constexpr int MediaFiles = 1'000;
constexpr quint8 Finished = 100;

class PromptEngine : public PlayerEngine
{
public:
    int exchangeScanSettingA(int) override { return 0; }
    int exchangeScanSettingB(int) override { return 0; }
    bool getMediaKind(const QByteArray &, UINT8 &hasAudio, UINT8 &hasVideo) override
    {
        ++m_questions;
        hasAudio = 1;
        hasVideo = 0;
        return true;
    }
    bool getClipInfo(const QByteArray &, ClipInfo &info) override
    {
        info = ClipInfo();
        info.artist = u"Artist %1"_s.arg(m_file / 10);
        info.album = u"Album %1"_s.arg(m_file / 10);
        info.genre = u"Pop"_s;
        m_file = (m_file + 1) % MediaFiles;
        return true;
    }
    void finishScan() override {}

    int questions() const { return m_questions; }

private:
    int m_file = 0;
    int m_questions = 0;
};

/// A phone with a thousand files, and with as many saved entries as a phone keeps.
class Phone : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        const QString media = m_folder->filePath(u"m"_s);
        qputenv("TROVE_DATA_PATH", QFile::encodeName(media));
        qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(m_folder->path()));
        bool isDone = true;
        for (int number = 0; number < MediaFiles; ++number) {
            const QString folder = media + u"/%1"_s.arg(number / 20);
            QFile file(folder + u"/%1.mp3"_s.arg(number));
            isDone = QDir().mkpath(folder) && file.open(QIODevice::WriteOnly) && isDone;
        }
        QDir().mkpath(m_folder->filePath(u"setup"_s));
        QFile settings(m_folder->filePath(u"setup/juv_marvola.cfg"_s));
        isDone = isDone && settings.open(QIODevice::WriteOnly);
        settings.write("[MediaLimitationItem]\nMaxNumOfList=10\nMaxNumOfItem=50\nMaxNumOfBookmark=20\n"
                       "MaxNumOfHistory=20\nMaxNumOfMediaFile=1000\n");
        settings.close();
        library.reset(new MP_MyLibrary(&engine));
        if (!isDone || library->getWorkDirectory().isEmpty())
            state.SkipWithError("the phone cannot be made");
        QStringList items;
        for (int number = 0; number < 50; ++number) {
            library->addItemToHistory(u"http://stream.example/%1"_s.arg(number));
            library->addItemToBookmark(u"bookmark %1"_s.arg(number), u"http://stream.example/%1"_s.arg(number));
            items.append(u"/mmc/mmca1/music/album/track %1.mp3"_s.arg(number));
        }
        library->setCurrentPlayingList(items);
        library->storeMyLibrary();
    }
    void TearDown(benchmark::State &) override
    {
        library.reset();
        m_folder.reset();
    }

protected:
    void refresh()
    {
        QSemaphore finished;
        // A hundred percent of the files are not the end yet.
        const auto report = [this, &finished](UINT8 percent) {
            if (percent == Finished && !library->isMyLibraryRefreshing())
                finished.release();
        };
        const auto connection = QObject::connect(library.get(), &MP_MyLibrary::refreshContinue, library.get(), report,
                                                 Qt::DirectConnection);
        library->refreshMyLibrary();
        finished.acquire();
        QObject::disconnect(connection);
    }
    QString infoFile() const { return m_folder->filePath(u".marvola.info"_s); }

    QString cacheFile() const { return m_folder->filePath(u"answers"_s); }

    PromptEngine engine;
    std::unique_ptr<MP_MyLibrary> library;

private:
    std::optional<QTemporaryDir> m_folder;
};

/// The same phone some seconds later, with all that the engine says of the files remembered.
class UnchangedPhone : public Phone
{
public:
    void SetUp(benchmark::State &state) override
    {
        Phone::SetUp(state);
        // Of files that have just been written nothing is remembered.
        std::this_thread::sleep_for(std::chrono::seconds(4));
        m_memory.emplace(engine, cacheFile(), u"benchmark"_s);
        library.reset(new MP_MyLibrary(&*m_memory));
        refresh();
    }
    void TearDown(benchmark::State &state) override
    {
        library.reset();
        m_memory.reset();
        Phone::TearDown(state);
    }

private:
    std::optional<CachingPlayerEngine> m_memory;
};

BENCHMARK_DEFINE_F(Phone, Construct)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(MP_MyLibrary(nullptr).getCurrentPlayingListNumber());
}

/// The same answers each time, so the texts of the list file stay and are not written.
BENCHMARK_DEFINE_F(Phone, Refresh)(benchmark::State &state)
{
    for (auto _ : state)
        refresh();
    if (library->getAllMedia().size() != MediaFiles)
        state.SkipWithError("not all files are in the index");
}

BENCHMARK_DEFINE_F(UnchangedPhone, Refresh)(benchmark::State &state)
{
    const int before = engine.questions();
    for (auto _ : state)
        refresh();
    if (library->getAllMedia().size() != MediaFiles || engine.questions() != before)
        state.SkipWithError("not all files are in the index, or the engine was asked");
}

/// The info file alone written durably in one go, which a power cut could leave half-written.
BENCHMARK_DEFINE_F(Phone, FloorOfRefresh)(benchmark::State &state)
{
    refresh();
    const QByteArray info = plain::read(infoFile());
    for (auto _ : state) {
        const marvola::FileDescriptor file =
            marvola::FileDescriptor::open(QFile::encodeName(infoFile()).constData(), O_WRONLY);
        const auto size = static_cast<std::size_t>(info.size());
        if (::pwrite(file.get(), info.constData(), size, 0) != info.size() || ::fdatasync(file.get()) != 0)
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_DEFINE_F(Phone, StoreWhatChanged)(benchmark::State &state)
{
    for (auto _ : state) {
        library->setVolume(static_cast<unsigned char>(library->getVolume() ^ 1U));
        library->storeMyLibrary();
    }
}

BENCHMARK_REGISTER_F(Phone, Construct)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(Phone, Refresh)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(UnchangedPhone, Refresh)
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(Phone, FloorOfRefresh)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(Phone, StoreWhatChanged)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
