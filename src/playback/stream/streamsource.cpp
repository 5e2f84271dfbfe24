#include "playback/stream/streamsource.h"

#include <QLoggingCategory>
#include <algorithm>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcSource, "plumtide.playback")

/// More than servers send at once to begin with; half a minute at 128 kbit/s.
constexpr qsizetype longestBeginning = 512 * 1024;
/// Begins the compressed header of a QuickTime file, which FFmpeg inflates at once, to any size that it
/// states. Nothing that plays as it comes has one.
constexpr QByteArrayView compressedHeader("dcomzlib");
} // namespace

StreamSource::~StreamSource()
{
    leavePipe();
}

void StreamSource::attach(const std::shared_ptr<BytePipe> &pipe)
{
    leavePipe();
    pipe_ = pipe;
    pipe_->setNotify(
        [this] { QMetaObject::invokeMethod(this, &StreamSource::pipeChanged, Qt::QueuedConnection); });
    pipe_->write(beginning_);
    if (isFinished_) {
        pipe_->finish();
    }
}

void StreamSource::settle()
{
    isSettled_ = true;
    isKept_ = false;
    beginning_ = {};
    end_ = {};
}

void StreamSource::send(const QByteArray &bytes)
{
    if (isFinished_) {
        return;
    }
    if (isHarmful(bytes)) {
        qCWarning(lcSource) << "a stream has a compressed header; it is not played";
        finish();
        return;
    }
    sent_ += static_cast<quint64>(bytes.size());
    if (isKept_) {
        isKept_ = beginning_.size() + bytes.size() <= longestBeginning;
        beginning_ = isKept_ ? beginning_ + bytes : QByteArray();
    }
    pipe_->write(bytes);
}

/// Whatever piece of it comes first.
bool StreamSource::isHarmful(const QByteArray &bytes)
{
    if (isSettled_) {
        return false;
    }
    const QByteArray seen = std::exchange(end_, {}) + bytes;
    end_ = seen.last(std::min(seen.size(), compressedHeader.size() - 1));
    return seen.indexOf(compressedHeader) >= 0;
}

void StreamSource::finish()
{
    isFinished_ = true;
    // First, so that whoever wants to prepare for it can.
    Q_EMIT finished();
    pipe_->finish();
}

void StreamSource::setFacts(const Facts &facts)
{
    facts_ = facts;
    Q_EMIT factsChanged();
}

bool StreamSource::hasRoom() const
{
    return pipe_->hasRoom();
}

void StreamSource::pipeChanged()
{
    if (pipe_->isHeld()) {
        Q_EMIT readerHeld();
    }
    if (pipe_->hasRoom()) {
        moreWanted();
    }
}

/// Whoever still reads from it waits no longer.
void StreamSource::leavePipe()
{
    if (pipe_) {
        pipe_->setNotify(nullptr);
        pipe_->cancel();
    }
}
