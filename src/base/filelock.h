#pragma once

#include <QString>

/// One program's claim to a file, for as long as the object lives: an flock() on a file beside it, with
/// ".lock" appended to its name. However the program ends, the system releases the lock. Main thread.
///
/// Where the path is a symbolic link, the claim is to the file that it leads to.
class FileLock
{
public:
    enum class State {
        /// This object has the file.
        Held,
        /// Another program has it, or another object in this one.
        Taken,
        /// It cannot be claimed: there is no folder yet, or one that cannot be written to, or the file system
        /// has no locks.
        Unavailable
    };

    /// Tries once, and never waits.
    explicit FileLock(const QString &path);
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    /// Removes the lock file, if this object holds the lock.
    ~FileLock();

    State state() const { return state_; }

private:
    QByteArray name_;
    /// The open file of the lock; -1 for none.
    int open_ = -1;
    State state_ = State::Unavailable;
};
