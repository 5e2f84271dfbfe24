#include "http/httptransfer.h"

#include <algorithm>
#include <utility>

namespace {
/// How much of a body is taken in one turn of the event loop, and how much is read at a time: a few bytes can
/// make a thousand times as many, and those that one reading makes are made at once.
constexpr qsizetype mostInATurn = 1024 * 1024;
constexpr long readingBytes = 4096;
/// RFC 8305, section 5: the Connection Attempt Delay that it recommends, in milliseconds.
constexpr long attemptDelay = 250;
/// How long a connection that nobody uses is good for another request, in seconds.
constexpr long mostIdleTime = 60;

/// As libcurl wants it: a header whose value is empty ends in a semicolon, or it would be left out.
QByteArray lineOf(const QPair<QByteArray, QByteArray> &header)
{
    return header.second.trimmed().isEmpty() ? header.first + ';' : header.first + ": " + header.second;
}
} // namespace

HttpTransfer::HttpTransfer(QObject *parent)
    : QObject(parent)
{
}

HttpTransfer::~HttpTransfer()
{
    cancel();
}

void HttpTransfer::send(const HttpRequest &request, const QUrl &url, Certificate certificate)
{
    isCompressible_ = request.isCompressible;
    maximumBytes_ = request.maximumBytes;
    response_ = {.url = url, .status = 0, .headers = {}};
    headBytes_ = 0;
    isHeadComplete_ = false;
    isPaused_ = false;
    isResting_ = false;
    stop_.reset();
    errorText_.front() = '\0';
    if (easy_ == nullptr) {
        open();
    }
    setRequest(request);
    setRoute(request, certificate);
    client_->begin(easy_, [this](CURLcode result) { finish(result); });
}

void HttpTransfer::cancel()
{
    if (easy_ == nullptr) {
        return;
    }
    const CurlLibrary &curl = *CurlLibrary::get();
    if (client_ != nullptr) {
        client_->end(easy_);
    }
    curl.easyCleanup(std::exchange(easy_, nullptr));
    curl.slistFreeAll(std::exchange(aliases_, nullptr));
    curl.slistFreeAll(std::exchange(headers_, nullptr));
}

QString HttpTransfer::errorText() const
{
    const char *text = errorText_.data();
    return QString::fromUtf8(*text != '\0' ? text : CurlLibrary::get()->easyStrerror(result_));
}

void HttpTransfer::open()
{
    client_ = &HttpClient::instance();
    easy_ = client_->library()->easyInit();
    const auto onHead = [](char *data, std::size_t, std::size_t size, void *transfer) -> std::size_t {
        const QByteArrayView line(data, static_cast<qsizetype>(size));
        return static_cast<HttpTransfer *>(transfer)->takeHeadLine(line) ? size : CURL_WRITEFUNC_ERROR;
    };
    const auto onBody = [](char *data, std::size_t, std::size_t size, void *transfer) -> std::size_t {
        const QByteArrayView piece(data, static_cast<qsizetype>(size));
        return static_cast<HttpTransfer *>(transfer)->takeBody(piece);
    };
    set(CURLOPT_HEADERFUNCTION, static_cast<curl_write_callback>(onHead));
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, static_cast<curl_write_callback>(onBody));
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_ERRORBUFFER, errorText_.data());
    set(CURLOPT_BUFFERSIZE, readingBytes);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    // Stream servers of the first years have a status line of their own.
    aliases_ = client_->library()->slistAppend(nullptr, "ICY 200 OK");
    set(CURLOPT_HTTP200ALIASES, aliases_);
    // One connection is one request: who cancels it closes the connection.
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_HAPPY_EYEBALLS_TIMEOUT_MS, attemptDelay);
    set(CURLOPT_MAXAGE_CONN, mostIdleTime);
    // Lets go of the thread that looks a name up, where it would wait for it otherwise.
    set(CURLOPT_QUICK_EXIT, 1L);
    // From nowhere: it is this that has cookies kept at all.
    set(CURLOPT_COOKIEFILE, "");
    if (isCompressible_) {
        set(CURLOPT_ACCEPT_ENCODING, client_->library()->hasBrotli ? "gzip, deflate, br" : "gzip, deflate");
    }
    chooseCertificates();
}

/// As OpenSSL's own variables say. Otherwise those that libcurl has been built with; it would read a file of
/// all of them at each connection, where it finds single ones in the folder as well.
void HttpTransfer::chooseCertificates()
{
    const QByteArray file = qgetenv("SSL_CERT_FILE");
    const QByteArray folder = qgetenv("SSL_CERT_DIR");
    const char *none = nullptr;
    if (!file.isEmpty() || !folder.isEmpty()) {
        set(CURLOPT_CAINFO, file.isEmpty() ? none : file.constData());
        set(CURLOPT_CAPATH, folder.isEmpty() ? none : folder.constData());
    } else if (client_->library()->hasCertificateFolder) {
        set(CURLOPT_CAINFO, none);
    }
}

void HttpTransfer::setRequest(const HttpRequest &request)
{
    const CurlLibrary &curl = *client_->library();
    // What libcurl would add of its own.
    curl_slist *lines = curl.slistAppend(nullptr, "Expect:");
    lines = curl.slistAppend(lines, "Content-Type:");
    for (const auto &header : request.headersFor(response_.url)) {
        lines = curl.slistAppend(lines, lineOf(header).constData());
    }
    set(CURLOPT_HTTPHEADER, lines);
    curl.slistFreeAll(std::exchange(headers_, lines));
    set(CURLOPT_URL, requestAddress(response_.url).constData());
    set(CURLOPT_HTTPGET, 1L);
    sent_ = request.body;
    if (request.hasBody()) {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t{sent_.size()});
        set(CURLOPT_POSTFIELDS, sent_.constData());
    }
    set(CURLOPT_CUSTOMREQUEST, request.method.constData());
}

/// An encrypted request passes a proxy unread. Of a connection that is kept libcurl knows how it was made,
/// and uses it for requests of the same kind only.
void HttpTransfer::setRoute(const HttpRequest &request, Certificate certificate)
{
    const bool isReadableOnTheWay = response_.url.scheme() == QLatin1StringView("http");
    const char *fromEnvironment = nullptr;
    set(CURLOPT_PROXY, isReadableOnTheWay && request.isConfidential(response_.url) ? "" : fromEnvironment);
    // What libcurl checks of the name: 2 is all of it.
    const bool isVerified = certificate == Certificate::Verified;
    set(CURLOPT_SSL_VERIFYPEER, isVerified ? 1L : 0L);
    set(CURLOPT_SSL_VERIFYHOST, isVerified ? 2L : 0L);
}

/// Also those of informational answers before the answer, and of trailers behind it.
bool HttpTransfer::takeHeadLine(QByteArrayView line)
{
    headBytes_ += line.size();
    if (headBytes_ > maximumHeadBytes) {
        return stopFor(TransferEnd::NotHttp);
    }
    const bool isLast = line == "\r\n" || line == "\n";
    return !isLast || isHeadComplete_ || endHead();
}

bool HttpTransfer::endHead()
{
    const CurlLibrary &curl = *client_->library();
    constexpr long firstFinalStatus = 200;
    long status = 0;
    curl.easyGetinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    if (status < firstFinalStatus) {
        return true;
    }
    isHeadComplete_ = true;
    response_.status = static_cast<int>(status);
    constexpr int latestRequest = -1;
    const auto after = [&](curl_header *header) {
        return curl.easyNextheader(easy_, CURLH_HEADER, latestRequest, header);
    };
    for (curl_header *header = after(nullptr); header != nullptr; header = after(header)) {
        response_.headers.emplaceBack(header->name, header->value);
    }
    if (response_.isRedirect()) {
        // Its body may be long, or never end. Only one that has none leaves its connection to the next.
        stopFor(TransferEnd::Redirected);
        return response_.header("Content-Length") == "0";
    }
    return response_.isReadable(isCompressible_) || stopFor(TransferEnd::NotHttp);
}

/// Whoever listens may have seen enough after what fits, and cancel.
std::size_t HttpTransfer::takeBody(QByteArrayView piece)
{
    if (stop_) {
        return CURL_WRITEFUNC_ERROR;
    }
    if (isResting_ || untold_ >= mostInATurn) {
        isPaused_ = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    if (untold_ == 0) {
        // Not from within libcurl: whoever is told may want to end this or to begin another.
        QMetaObject::invokeMethod(this, &HttpTransfer::tellBody, Qt::QueuedConnection);
    }
    const qint64 room = maximumBytes_ - body_.size();
    body_ += piece.first(std::min<qsizetype>(room, piece.size()));
    untold_ += piece.size();
    if (piece.size() > room) {
        stopFor(TransferEnd::TooLong);
        return CURL_WRITEFUNC_ERROR;
    }
    return static_cast<std::size_t>(piece.size());
}

bool HttpTransfer::stopFor(TransferEnd end)
{
    stop_ = end;
    return false;
}

void HttpTransfer::tellBody()
{
    if (std::exchange(untold_, 0) > 0 && easy_ != nullptr) {
        Q_EMIT bodyReceived();
    }
    goOn();
}

void HttpTransfer::rest(bool isResting)
{
    if (isResting_ == isResting || easy_ == nullptr) {
        return;
    }
    isResting_ = isResting;
    goOn();
}

/// Where libcurl waits, and nothing speaks against more. A rest begins with what comes next, so that libcurl
/// need not be told of one that ends before.
void HttpTransfer::goOn()
{
    if (isPaused_ && !isResting_ && untold_ == 0 && easy_ != nullptr) {
        isPaused_ = false;
        client_->library()->easyPause(easy_, CURLPAUSE_CONT);
    }
}

void HttpTransfer::finish(CURLcode result)
{
    result_ = result;
    tellBody();
    if (easy_ != nullptr) {
        Q_EMIT ended(endOf(result));
    }
}

TransferEnd HttpTransfer::endOf(CURLcode result) const
{
    if (stop_) {
        return *stop_;
    }
    if (result == CURLE_OK && isHeadComplete_) {
        return TransferEnd::Complete;
    }
    // The latter where there is nothing to verify it with.
    if (result == CURLE_PEER_FAILED_VERIFICATION || result == CURLE_SSL_CACERT_BADFILE) {
        return TransferEnd::Unverified;
    }
    curl_off_t connected = 0;
    client_->library()->easyGetinfo(easy_, CURLINFO_PRETRANSFER_TIME_T, &connected);
    return connected > 0 ? TransferEnd::NotHttp : TransferEnd::NoConnection;
}
