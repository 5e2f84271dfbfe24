#pragma once

#include <QString>

/// One program's claim to a file, for as long as the object lives: a lock of the system's on a file beside
/// it, with ".lock" behind its name. However the program ends, nothing stays claimed. Main thread.
///
/// Where the path is a symbolic link, the claim is to the file that it leads to.
class FileLock
{
public:
    enum class State {
        /// The file is ours.
        Held,
        /// Another program has it, or another object of this one.
        Taken,
        /// It cannot be claimed: there is no folder yet, or one that cannot be written to, or the file system
        /// has no locks.
        Unavailable
    };

    /// Tries once, and never waits.
    explicit FileLock(const QString &path);
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    /// Removes the file of the lock, if the lock is ours.
    ~FileLock();

    State state() const { return state_; }

private:
    QByteArray name_;
    /// The open file of the lock; -1 for none.
    int open_ = -1;
    State state_ = State::Unavailable;
};
