#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

/// Pieces of work that are not waited for while the program runs, each on a thread of its own, and the count
/// of those that are still under way when it ends. Shared with the threads; thread-safe.
class DetachedWork
{
public:
    /// Starts `work` on a new thread and returns at once.
    static void run(const std::shared_ptr<DetachedWork> &count, std::function<void()> work);

    /// Whether all of it is done within `time`.
    bool waitForNone(std::chrono::milliseconds time);

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int running_ = 0;
};
