#pragma once

#include "playback/stream/bytepipe.h"

#include <QByteArray>
#include <QObject>
#include <memory>

/// Brings the bytes of one stream, as a player understands them, for as long as it lives: what each kind does
/// to keep them coming is its own affair. Main thread.
///
/// Inside a slot of its signals it may be deleted only with deleteLater().
class StreamSource : public QObject
{
    Q_OBJECT

public:
    /// What servers say beside the sound.
    struct Facts
    {
        /// In kbit/s, as announced; 0 where nobody says.
        int bitrate = 0;
        /// Whether some of it comes from a server whose certificate could not be verified.
        bool isUnverified = false;
    };

    ~StreamSource() override;

    /// To be called once, after the first attach().
    virtual void start() = 0;
    /// Whether the stream can be had from its beginning.
    bool isBeginningKept() const { return isKept_; }
    /// From now on `pipe`, which nothing has been written to, gets the stream, from its beginning where that
    /// is kept. The one before ends.
    void attach(const std::shared_ptr<BytePipe> &pipe);
    /// The stream is heard: its beginning is not needed any more, and that it comes is worth more patience.
    void settle();

    const Facts &facts() const { return facts_; }

Q_SIGNALS:
    /// What the station says that plays from the byte of that number on, as it came.
    void titleRead(quint64 position, const QByteArray &title);
    void factsChanged();
    /// Nothing more will come; the pipe is told so next.
    void finished();
    /// The reader waits for a higher limit.
    void readerHeld();

protected:
    using QObject::QObject;

    bool isSettled() const { return isSettled_; }
    void send(const QByteArray &bytes);
    void finish();
    void setFacts(const Facts &facts);
    /// How much has been sent in all.
    quint64 bytesSent() const { return sent_; }
    /// Whether the pipe has room; moreWanted() follows where it has none.
    bool hasRoom() const;
    /// There is room again.
    virtual void moreWanted() = 0;

private:
    bool isHarmful(const QByteArray &bytes);
    void pipeChanged();
    void leavePipe();

    Facts facts_;
    std::shared_ptr<BytePipe> pipe_;
    /// All that has been sent; while isKept_.
    QByteArray beginning_;
    bool isKept_ = true;
    /// The last bytes that have been sent, before it is settled.
    QByteArray end_;
    bool isSettled_ = false;
    bool isFinished_ = false;
    quint64 sent_ = 0;
};
