#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <functional>
#include <limits>
#include <mutex>

/// The bytes of one stream on their way from the main thread, which writes them, to a thread of the player,
/// which reads them and waits for what has not come yet. Thread-safe.
class BytePipe
{
public:
    /// What may wait to be read before the writer should rest. It is no limit: what comes is taken.
    static constexpr qsizetype enough = 256 * 1024;

    /// For the writer: `notify` is called on the reader's thread when there is room again where there was
    /// none, and when the reader has come to the limit of what it may read. It must only post a message. Null
    /// for nobody.
    void setNotify(std::function<void()> notify);
    void write(const QByteArray &bytes);
    /// Nothing more will come; what has is still read.
    void finish();
    /// Whether less than `enough` waits to be read.
    bool hasRoom() const;

    /// Whether nothing waits to be read.
    bool isEmpty() const;
    /// How much has been read in all.
    quint64 bytesRead() const;
    /// How much may be read in all; without limit at first.
    void limit(quint64 bytes);
    /// Whether the reader waits for a higher limit.
    bool isHeld() const;

    /// For the reader: fills `to` with what there is, at most `most` bytes; waits where there is nothing. 0
    /// at the end, and once cancelled.
    qsizetype read(char *to, qsizetype most);
    /// Ends any read, and all further ones.
    void cancel();

private:
    bool hasRoomLocked() const { return waiting_ < enough; }

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> notify_;
    std::deque<QByteArray> pieces_;
    qsizetype firstOffset_ = 0; // of what has not been read in the first piece
    qsizetype waiting_ = 0;
    quint64 read_ = 0;
    quint64 limit_ = std::numeric_limits<quint64>::max();
    bool isHeld_ = false;
    bool isFinished_ = false;
    bool isCancelled_ = false;
};
