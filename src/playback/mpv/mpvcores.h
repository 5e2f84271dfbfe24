#pragma once

#include "playback/mpv/detachedwork.h"
#include "playback/mpv/mpvhandle.h"

#include <memory>
#include <mutex>

/// Opens libmpv and makes its cores, all with the same options. Keeps one in reserve, because making one can
/// take as long as all else between a double click and the sound. Thread-safe.
class MpvCores
{
public:
    MpvCores(std::shared_ptr<DetachedWork> detached, MpvHandle::Options options);

    /// The core in reserve, or a new one; null where libmpv gives none. May take a quarter of a second when
    /// libmpv is not open yet.
    std::unique_ptr<MpvHandle> take();

    /// Sees to it that a core is in reserve, unless one is taken meanwhile. Takes as long as take() may.
    void prepare();

    /// Gives the reserve up for good.
    void close();

private:
    std::unique_ptr<MpvHandle> make();

    std::shared_ptr<DetachedWork> detached_;
    MpvHandle::Options options_;
    std::once_flag once_;
    std::unique_ptr<const MpvLibrary> library_;
    std::mutex mutex_;
    std::unique_ptr<MpvHandle> reserve_;
    bool wanted_ = false; // by a prepare() that is under way
    bool closed_ = false;
};
