#include "base/filelock.h"

#include "base/exception.h"
#include "base/filereplacement.h"

#include <QFile>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
/// Whether the open file still has that name: its owner removes it with the lock.
bool isNamed(int file, const QByteArray &name)
{
    struct stat opened
    {
    };
    struct stat named
    {
    };
    return ::fstat(file, &opened) == 0 && ::lstat(name.constData(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

QByteArray lockName(const QString &path)
{
    try {
        return FileReplacement::behindLinks(path) + ".lock";
    } catch (const Exception &) {
        return {};
    }
}
} // namespace

FileLock::FileLock(const QString &path)
    : name_(lockName(path))
{
    // Links are not followed: a link in this place must not make the program create a file elsewhere.
    constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    constexpr mode_t onlyForUs = 0600;
    constexpr int attempts = 10;
    for (int attempt = 0; attempt < attempts && !name_.isEmpty(); ++attempt) {
        open_ = ::open(name_.constData(), flags, onlyForUs);
        if (open_ < 0) {
            return;
        }
        if (::flock(open_, LOCK_EX | LOCK_NB) != 0) {
            state_ = errno == EWOULDBLOCK ? State::Taken : State::Unavailable;
        } else if (isNamed(open_, name_)) {
            state_ = State::Held;
            return;
        }
        ::close(open_);
        open_ = -1;
        if (state_ == State::Taken) {
            return;
        }
    }
}

FileLock::~FileLock()
{
    if (state_ == State::Held) {
        ::unlink(name_.constData());
        ::close(open_);
    }
}
