#pragma once

#include <QByteArray>
#include <QObject>
#include <QUrl>
#include <chrono>

class HttpExchange;
class StreamHeaders;

/// Finds out what is at an address: asks for it, follows redirects, and reads no more than tells a stream
/// from a playlist and from anything else. Main thread.
///
/// Inside a slot of its signals it may be cancelled and started anew, but deleted only with deleteLater().
class StreamProbe : public QObject
{
    Q_OBJECT

public:
    enum class Finding {
        NoAnswer, ///< none that counts: an error status, nothing at all, or more than a playlist may have
        NotHttp,  ///< what came does not begin as HTTP does
        NoStream, ///< a text that is no playlist, or too little to be sound
        Playlist,
        Sound,
    };

    struct Result
    {
        Finding finding;
        /// Where the redirects have led.
        QUrl url;
        /// Of a playlist, the whole of it.
        QByteArray body;
    };

    /// Asks for `url` with what `headers` has for it and for each address that it redirects to; whatever is
    /// under way is cancelled. Nothing is signalled before this returns.
    void start(const QUrl &url, const StreamHeaders &headers, std::chrono::milliseconds deadline);
    /// Closes the connection; nothing is signalled any more. Does nothing where nothing is under way.
    void cancel();

Q_SIGNALS:
    /// What has come so far can only be a playlist.
    void playlistBegun();
    /// The probe is over, and its connection closed.
    void finished(const StreamProbe::Result &result);

private:
    void inspect(bool complete);
    void conclude(Finding finding);

    HttpExchange *exchange_ = nullptr;
};
