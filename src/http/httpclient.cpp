#include "http/httpclient.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <QThread>
#include <utility>

namespace {
constexpr long mostConnections = 4;
constexpr std::chrono::seconds idleTime{60};
/// How long the first request of all leaves the processors to a window that is being made. What opening the
/// library needs of them would come on top of the time until its first frame.
constexpr std::chrono::milliseconds openingDelay{100};
} // namespace

HttpClient &HttpClient::instance()
{
    static QPointer<HttpClient> client;
    if (client == nullptr) {
        client = new HttpClient(QCoreApplication::instance());
    }
    return *client;
}

HttpClient::HttpClient(QObject *parent)
    : QObject(parent)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    idle_.setSingleShot(true);
    idle_.setInterval(idleTime);
    connect(&idle_, &QTimer::timeout, this, &HttpClient::dropConnections);
}

HttpClient::~HttpClient()
{
    if (opening_ != nullptr) {
        opening_->wait();
    }
    while (!running_.isEmpty()) {
        end(running_.cbegin().key());
    }
    dropConnections();
}

void HttpClient::open()
{
    if (isOpened_ || opening_ != nullptr) {
        return;
    }
    opening_.reset(QThread::create([] { CurlLibrary::get(); }));
    connect(opening_.get(), &QThread::finished, this, [this] {
        opening_.reset();
        library_ = CurlLibrary::get();
        isOpened_ = true;
        Q_EMIT opened();
    });
    opening_->start();
}

void HttpClient::whenOpened(QObject *context, std::function<void()> step)
{
    if (isOpened_) {
        QMetaObject::invokeMethod(context, std::move(step), Qt::QueuedConnection);
    } else {
        connect(this, &HttpClient::opened, context, std::move(step));
        QTimer::singleShot(openingDelay, this, &HttpClient::open);
    }
}

void HttpClient::begin(CURL *easy, const Ended &ended)
{
    idle_.stop();
    if (multi_ == nullptr) {
        makeMulti();
    }
    running_.insert(easy, ended);
    library_->multiAddHandle(multi_, easy);
}

void HttpClient::end(CURL *easy)
{
    if (running_.remove(easy)) {
        library_->multiRemoveHandle(multi_, easy);
        if (running_.isEmpty()) {
            idle_.start();
        }
    }
}

void HttpClient::makeMulti()
{
    multi_ = library_->multiInit();
    const auto onSocket = [](CURL *, curl_socket_t socket, int events, void *client, void *) {
        static_cast<HttpClient *>(client)->watch(socket, events);
        return 0;
    };
    const auto onTimer = [](CURLM *, long milliseconds, void *client) {
        QTimer &timer = static_cast<HttpClient *>(client)->timer_;
        if (milliseconds < 0) {
            timer.stop();
        } else {
            timer.start(std::chrono::milliseconds(milliseconds));
        }
        return 0;
    };
    library_->multiSetopt(multi_, CURLMOPT_SOCKETFUNCTION, static_cast<curl_socket_callback>(onSocket));
    library_->multiSetopt(multi_, CURLMOPT_SOCKETDATA, this);
    library_->multiSetopt(multi_, CURLMOPT_TIMERFUNCTION, static_cast<curl_multi_timer_callback>(onTimer));
    library_->multiSetopt(multi_, CURLMOPT_TIMERDATA, this);
    library_->multiSetopt(multi_, CURLMOPT_MAXCONNECTS, mostConnections);
}

void HttpClient::dropConnections()
{
    if (multi_ != nullptr) {
        library_->multiCleanup(std::exchange(multi_, nullptr));
        timer_.stop();
    }
}

void HttpClient::watch(curl_socket_t socket, int events)
{
    static_assert(CURL_POLL_IN == CURL_CSELECT_IN && CURL_POLL_OUT == CURL_CSELECT_OUT);
    for (const auto &[direction, type] :
         {std::pair(CURL_POLL_IN, QSocketNotifier::Read), std::pair(CURL_POLL_OUT, QSocketNotifier::Write)}) {
        const bool isWanted = events != CURL_POLL_REMOVE && (events & direction) != 0;
        QSocketNotifier *&notifier = notifiers_[{socket, direction}];
        if (isWanted && notifier == nullptr) {
            notifier = new QSocketNotifier(socket, type, this);
            connect(notifier, &QSocketNotifier::activated, this,
                    [this, socket, direction = direction] { act(socket, direction); });
        } else if (!isWanted) {
            if (notifier != nullptr) {
                // It may be the one that is telling something just now.
                notifier->setEnabled(false);
                notifier->deleteLater();
            }
            notifiers_.remove({socket, direction});
        }
    }
}

void HttpClient::act(curl_socket_t socket, int events)
{
    int left = 0;
    library_->multiSocketAction(multi_, socket, events, &left);
    // Each step may end what is left, and even the last connection.
    while (const CURLMsg *message = multi_ != nullptr ? library_->multiInfoRead(multi_, &left) : nullptr) {
        const CURLcode result = message->data.result;
        CURL *easy = message->easy_handle;
        const Ended ended = running_.value(easy);
        end(easy);
        if (ended) {
            ended(result);
        }
    }
}
