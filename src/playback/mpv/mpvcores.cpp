#include "playback/mpv/mpvcores.h"

#include <utility>

MpvCores::MpvCores(std::shared_ptr<DetachedWork> detached, MpvHandle::Options options)
    : detached_(std::move(detached))
    , options_(std::move(options))
{
}

std::unique_ptr<MpvHandle> MpvCores::take()
{
    {
        const std::scoped_lock lock(mutex_);
        wanted_ = false;
        if (reserve_) {
            return std::move(reserve_);
        }
    }
    return make();
}

void MpvCores::prepare()
{
    {
        const std::scoped_lock lock(mutex_);
        if (reserve_ || closed_) {
            return;
        }
        wanted_ = true;
    }
    std::unique_ptr<MpvHandle> made = make();
    const std::scoped_lock lock(mutex_);
    if (wanted_) {
        reserve_.swap(made);
    }
}

void MpvCores::close()
{
    const std::scoped_lock lock(mutex_);
    closed_ = true;
    wanted_ = false;
    reserve_.reset();
}

std::unique_ptr<MpvHandle> MpvCores::make()
{
    std::call_once(once_, [this] { library_ = MpvLibrary::open(); });
    return library_ ? MpvHandle::create(*library_, detached_, options_) : nullptr;
}
