#include "playback/stream/bytepipe.h"

#include <algorithm>
#include <cstring>
#include <utility>

void BytePipe::setNotify(std::function<void()> notify)
{
    const std::scoped_lock lock(mutex_);
    notify_ = std::move(notify);
}

void BytePipe::write(const QByteArray &bytes)
{
    if (bytes.isEmpty()) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    pieces_.push_back(bytes);
    waiting_ += bytes.size();
    changed_.notify_all();
}

void BytePipe::finish()
{
    const std::scoped_lock lock(mutex_);
    isFinished_ = true;
    changed_.notify_all();
}

bool BytePipe::hasRoom() const
{
    const std::scoped_lock lock(mutex_);
    return hasRoomLocked();
}

bool BytePipe::isEmpty() const
{
    const std::scoped_lock lock(mutex_);
    return waiting_ == 0;
}

quint64 BytePipe::bytesRead() const
{
    const std::scoped_lock lock(mutex_);
    return read_;
}

void BytePipe::limit(quint64 bytes)
{
    const std::scoped_lock lock(mutex_);
    limit_ = bytes;
    changed_.notify_all();
}

bool BytePipe::isHeld() const
{
    const std::scoped_lock lock(mutex_);
    return isHeld_;
}

qsizetype BytePipe::read(char *to, qsizetype most)
{
    std::unique_lock lock(mutex_);
    if (waiting_ > 0 && read_ >= limit_ && !isCancelled_) {
        isHeld_ = true;
        if (notify_) {
            notify_();
        }
    }
    changed_.wait(lock, [this] {
        return isCancelled_ || (waiting_ > 0 && read_ < limit_) || (waiting_ == 0 && isFinished_);
    });
    isHeld_ = false;
    if (isCancelled_ || waiting_ == 0) {
        return 0;
    }
    const bool hadRoom = hasRoomLocked();
    const QByteArray &first = pieces_.front();
    const quint64 allowed = std::min(limit_ - read_, static_cast<quint64>(first.size() - firstOffset_));
    const qsizetype count = std::min(most, static_cast<qsizetype>(allowed));
    std::memcpy(to, first.constData() + firstOffset_, static_cast<std::size_t>(count));
    firstOffset_ += count;
    if (firstOffset_ == first.size()) {
        pieces_.pop_front();
        firstOffset_ = 0;
    }
    waiting_ -= count;
    read_ += static_cast<quint64>(count);
    if (!hadRoom && hasRoomLocked() && notify_) {
        notify_();
    }
    return count;
}

void BytePipe::cancel()
{
    const std::scoped_lock lock(mutex_);
    isCancelled_ = true;
    changed_.notify_all();
}
