#pragma once

#include "base/deletelater.h"
#include "http/httpmessage.h"

#include <QByteArray>
#include <QObject>
#include <memory>

class HttpExchange;

/// One connection to what may be a stream: asks, follows redirects, and tells by the first bytes what is
/// there. A stream then goes on over the same connection: many servers let a listener in once. Main thread.
///
/// Inside a slot of its signals it may be deleted only with deleteLater().
class StreamConnection : public QObject
{
    Q_OBJECT

public:
    using Pointer = std::unique_ptr<StreamConnection, DeleteLater>;

    enum class Finding {
        NoAnswer, ///< none that counts: an error status, nothing at all, or more than a playlist may have
        NoStream, ///< a text that is no playlist, or too little to be sound
        Playlist, ///< of streams; the whole of it has come
        Segments, ///< a playlist of the pieces of one stream; the whole of it has come
        Sound,    ///< it goes on
    };

    explicit StreamConnection(QObject *parent = nullptr);

    /// To be called once. Nothing is signalled before this returns. The deadline of the request is that of
    /// its finding.
    void start(const HttpRequest &request);

    /// From found() on: the answer's head.
    const HttpResponse &response() const;
    bool isUnverified() const;
    /// What has come and has not been taken yet.
    QByteArray take();
    /// Whether nothing is read, so that the server has to wait.
    void rest(bool isResting);

Q_SIGNALS:
    /// Once, unless it is deleted before.
    void found(StreamConnection::Finding finding);
    /// More of the sound has come.
    void received();
    /// The sound has ended, by its length or otherwise.
    void ended(bool isComplete);

private:
    void inspect(bool isComplete);
    void conclude(Finding finding);
    void end(bool isComplete);

    HttpExchange *exchange_; // a child
    bool isFound_ = false;
};
