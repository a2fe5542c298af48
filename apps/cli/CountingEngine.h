// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_COUNTINGENGINE_H
#define MARVOLA_CLI_COUNTINGENGINE_H

#include <marvola/PlayerEngine.h>

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <atomic>

namespace marvola {

/// Hands every question on to another engine and remembers which files it was asked about, so that a refresh can say
/// how many there were without a second walk.
class CountingEngine : public PlayerEngine
{
public:
    /// \a engine must outlive this object.
    explicit CountingEngine(PlayerEngine &engine);
    /// The engine that is asked from now on; not while a refresh runs. It must outlive this object.
    void setEngine(PlayerEngine &engine) { m_engine = &engine; }

    /// The number of files asked about; from any thread.
    int count() const { return m_count; }
    /// The files asked about, in order; not while a refresh runs.
    const QStringList &files() const { return m_files; }
    /// How many files had been asked about at the end of each scan; not while a refresh runs, which makes one scan for
    /// each place that has files.
    const QList<qsizetype> &scanEnds() const { return m_scanEnds; }

    int exchangeScanSettingA(int value) override;
    int exchangeScanSettingB(int value) override;
    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override;
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override;
    void finishScan() override;

private:
    PlayerEngine *m_engine;
    std::atomic<int> m_count{0}; ///< written by the refresh worker
    QStringList m_files;
    QList<qsizetype> m_scanEnds;
};

} // namespace marvola

#endif
