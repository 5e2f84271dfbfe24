#pragma once

#include "playback/mpv/memorywatch.h"

#include <QtGlobal>

/// Decides how much of a stream a core may read, by what comes of it: FFmpeg keeps what it has not understood
/// yet, and nothing but the end of the machine's memory would stop it. Whatever it may read it may keep, and
/// with the room that growing takes that is three times as much.
class ReadAllowance
{
public:
    ReadAllowance();

    /// How much may be read in all.
    quint64 bytes() const { return bytes_; }
    /// The buffer holds sound up to there, in seconds of the stream, and so many bytes of it; so much has
    /// been read.
    void update(double end, qint64 bufferedBytes, quint64 bytesRead);
    /// The reader has come to the limit, which is raised if what it has read has led to sound, and to memory
    /// in proportion. Whether it has been.
    bool extend(quint64 bytesRead);

private:
    quint64 bytes_;
    double end_ = 0;
    quint64 bytesAtSound_ = 0; // read when there was new sound last
    MemoryWatch memory_;
    qint64 buffered_ = 0;
    qint64 bufferedBefore_ = 0; // at the last extension
    qint64 unexplained_ = 0;    // of the process's growth, all in all
};
