#include "playback/stream/streamsource.h"

namespace {
/// More than servers send at once to begin with; half a minute at 128 kbit/s.
constexpr qsizetype longestBeginning = 512 * 1024;
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
}

void StreamSource::send(const QByteArray &bytes)
{
    sent_ += static_cast<quint64>(bytes.size());
    if (isKept_) {
        isKept_ = beginning_.size() + bytes.size() <= longestBeginning;
        beginning_ = isKept_ ? beginning_ + bytes : QByteArray();
    }
    pipe_->write(bytes);
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
