#pragma once

#include "http/httpmessage.h"
#include "playback/stream/hls/hlsplaylist.h"

#include <QObject>
#include <QTimer>

class HttpExchange;

/// Fetches a range of what is behind an address, whether the server knows of ranges or not. Main thread.
///
/// Inside a slot of its signals it may be deleted only with deleteLater().
class HlsFetch : public QObject
{
    Q_OBJECT

public:
    enum class End {
        Complete,
        Refused, ///< the server has answered, but not with what was asked for, or with too much of it
        Lost,    ///< there was no answer, or it broke off or fell silent
    };

    /// How the bytes come.
    enum class Pace {
        AtOnce,  ///< all of them within the request's deadline; more than its maximumBytes are refused
        AsTaken, ///< at the pace of rest(); once the answer has begun, only a silence ends it
    };

    explicit HlsFetch(QObject *parent = nullptr);

    /// To be called once.
    void start(const HttpRequest &request, const HlsRange &range, Pace pace);

    /// What has come of the range and has not been taken yet.
    QByteArray take();
    /// How much of the range has come in all.
    quint64 received() const { return received_; }
    /// Whether nothing is read, so that the server has to wait.
    void rest(bool isResting);
    /// Of the answer; from the first signal on.
    const HttpResponse &response() const;
    bool isUnverified() const;

Q_SIGNALS:
    /// There is something to take.
    void arrived();
    /// Once, unless it is deleted before.
    void ended(HlsFetch::End end);

private:
    void receive();
    bool beginAnswer();
    void complete();
    void conclude(End end);

    HttpExchange *exchange_; // a child
    Pace pace_ = Pace::AtOnce;
    QTimer silence_;
    HlsRange range_;
    qint64 most_ = 0;
    bool isBegun_ = false;
    bool isOver_ = false;
    /// Of the answer, before the range begins.
    quint64 toSkip_ = 0;
    quint64 received_ = 0;
    QByteArray waiting_;
};
