#include "playback/mpv/detachedwork.h"

#include <thread>

void DetachedWork::run(const std::shared_ptr<DetachedWork> &count, std::function<void()> work)
{
    {
        const std::scoped_lock lock(count->mutex_);
        ++count->running_;
    }
    std::thread([count, work = std::move(work)] {
        work();
        const std::scoped_lock lock(count->mutex_);
        --count->running_;
        count->changed_.notify_all();
    }).detach();
}

bool DetachedWork::waitForNone(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, time, [this] { return running_ == 0; });
}
