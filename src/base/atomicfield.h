#pragma once

#include <memory>
#include <mutex>
#include <utility>

/// An owning field whose every read and write is indivisible, whichever thread performs it.
///
/// A reader gets the old or the new value whole, and what it got stays valid after the field has been
/// written again. There is no lock over several fields.
///
/// A mutex rather than std::atomic<std::shared_ptr>: the one in libstdc++ 12 is reported as a race by
/// ThreadSanitizer.
template <class T>
class AtomicField
{
public:
    AtomicField() = default;
    explicit AtomicField(T value)
        : value_(std::move(value))
    {
    }

    T get() const
    {
        const std::scoped_lock lock(mutex_);
        return value_;
    }

    /// The old value is destroyed after the lock is released: its destructor may be long.
    void set(T value)
    {
        const std::scoped_lock lock(mutex_);
        std::swap(value_, value);
    }

private:
    mutable std::mutex mutex_;
    T value_{};
};
