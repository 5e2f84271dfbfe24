#pragma once

#include "http/curllibrary.h"

#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

class QSocketNotifier;
class QThread;

/// libcurl's transfers, driven by the event loop of the main thread. Made when first asked for and owned by
/// the application, which takes it along when it ends; whoever keeps it keeps a QPointer.
///
/// Connections are kept for the next request to the same server: four at most, each used again within a
/// minute, and none of them once nothing has been transferred for a minute.
class HttpClient : public QObject
{
    Q_OBJECT

public:
    /// Told how a transfer ended. Within it anything may be begun or ended.
    using Ended = std::function<void(CURLcode result)>;

    static HttpClient &instance();
    ~HttpClient() override;

    /// Has a thread of its own open libcurl, unless that has been done already.
    void open();
    /// Has `step` run on the main thread once libcurl is open, or cannot be, but not before this returns and
    /// not beyond the life of `context`. Where nobody has called open() for a while, this does.
    void whenOpened(QObject *context, std::function<void()> step);
    /// Null where there is no libcurl that fits.
    const CurlLibrary *library() const { return library_; }

    /// Begins the transfer that `easy` has been prepared for, after this returns.
    void begin(CURL *easy, const Ended &ended);
    /// Ends it, if it has not ended by itself; nothing is told any more. Does not wait, not even for the
    /// look-up of a name. Not to be called by what libcurl calls.
    void end(CURL *easy);

Q_SIGNALS:
    /// The library is open, or cannot be.
    void opened();

private:
    explicit HttpClient(QObject *parent);

    void makeMulti();
    void dropConnections();
    void watch(curl_socket_t socket, int events);
    void act(curl_socket_t socket, int events);

    std::unique_ptr<QThread> opening_;
    bool isOpened_ = false;
    const CurlLibrary *library_ = nullptr;
    CURLM *multi_ = nullptr;
    QHash<CURL *, Ended> running_;
    /// Of each socket and direction that libcurl waits for.
    QHash<std::pair<curl_socket_t, int>, QSocketNotifier *> notifiers_;
    QTimer timer_;
    QTimer idle_;
};
