#include "playback/stream/hls/hlsfetch.h"

#include "base/leadinginteger.h"
#include "http/httpexchange.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

using namespace std::chrono_literals;

namespace {
/// How long an open connection may bring nothing.
constexpr std::chrono::milliseconds longestFetchSilence = 3s;
/// More than may come before it is taken: a transfer hands over a megabyte at a time.
constexpr qint64 mostUntakenBytes = 4LL * 1024 * 1024;
constexpr int partialContent = 206;

/// "bytes=FROM-TO" (RFC 9110, 14.1.2).
QByteArray headerFor(const HlsRange &range)
{
    return "bytes=" + QByteArray::number(range.from) + '-' +
           (range.length ? QByteArray::number(range.from + std::max<quint64>(*range.length, 1) - 1)
                         : QByteArray());
}
} // namespace

HlsFetch::HlsFetch(QObject *parent)
    : QObject(parent)
    , exchange_(new HttpExchange(this))
{
    connect(exchange_, &HttpExchange::bodyReceived, this, &HlsFetch::receive);
    connect(exchange_, &HttpExchange::finished, this, &HlsFetch::complete);
    connect(exchange_, &HttpExchange::failed, this, [this](const HttpError &error) {
        conclude(error.code == HttpExchange::BadRedirect ? End::Refused : End::Lost);
    });
    silence_.setSingleShot(true);
    silence_.setInterval(longestFetchSilence);
    connect(&silence_, &QTimer::timeout, this,
            [this] { conclude(range_.length && received_ == *range_.length ? End::Complete : End::Lost); });
}

void HlsFetch::start(const HttpRequest &request, const HlsRange &range, Pace pace)
{
    pace_ = pace;
    range_ = range;
    most_ = request.maximumBytes;
    HttpRequest ranged = request;
    ranged.maximumBytes = mostUntakenBytes;
    if (range != HlsRange()) {
        ranged.headers.emplaceBack("Range", headerFor(range));
    }
    exchange_->start(ranged);
}

QByteArray HlsFetch::take()
{
    return std::exchange(waiting_, {});
}

void HlsFetch::rest(bool isResting)
{
    if (isOver_ || pace_ == Pace::AtOnce) {
        return;
    }
    exchange_->rest(isResting);
    if (isResting) {
        silence_.stop();
    } else if (isBegun_) {
        silence_.start();
    }
}

const HttpResponse &HlsFetch::response() const
{
    return exchange_->response();
}

bool HlsFetch::isUnverified() const
{
    return exchange_->isUnverified();
}

void HlsFetch::receive()
{
    if (isOver_ || (!isBegun_ && !beginAnswer())) {
        return;
    }
    if (pace_ == Pace::AsTaken) {
        silence_.start();
    }
    QByteArray piece = exchange_->takeBody();
    const auto skipped = static_cast<qsizetype>(std::min(toSkip_, static_cast<quint64>(piece.size())));
    toSkip_ -= static_cast<quint64>(skipped);
    piece.remove(0, skipped);
    const quint64 room = range_.length.value_or(std::numeric_limits<quint64>::max()) - received_;
    const bool isTooMuch = static_cast<quint64>(piece.size()) > room;
    if (isTooMuch) {
        piece.truncate(static_cast<qsizetype>(room));
    }
    received_ += static_cast<quint64>(piece.size());
    waiting_ += piece;
    if (pace_ == Pace::AtOnce && waiting_.size() > most_) {
        conclude(End::Refused);
        return;
    }
    if (!piece.isEmpty()) {
        Q_EMIT arrived();
    }
    if (isTooMuch) {
        conclude(End::Complete);
    }
}

/// A server that does not know of ranges sends everything.
bool HlsFetch::beginAnswer()
{
    isBegun_ = true;
    const HttpResponse &answer = response();
    quint64 from = 0;
    if (answer.status == partialContent) {
        const QByteArray content = answer.header("Content-Range");
        constexpr QByteArrayView unit("bytes ");
        from = content.startsWith(unit)
                   ? static_cast<quint64>(
                         std::max<qint64>(leadingInteger(QString::fromLatin1(content.mid(unit.size()))), 0))
                   : range_.from;
    }
    if (answer.status < 200 || answer.status >= 300 || from > range_.from) {
        conclude(End::Refused);
        return false;
    }
    toSkip_ = range_.from - from;
    if (pace_ == Pace::AsTaken) {
        exchange_->endDeadline();
    }
    return true;
}

void HlsFetch::complete()
{
    if (!isOver_ && (isBegun_ || beginAnswer())) {
        conclude(received_ == range_.length.value_or(received_) ? End::Complete : End::Lost);
    }
}

void HlsFetch::conclude(End end)
{
    if (isOver_) {
        return;
    }
    isOver_ = true;
    silence_.stop();
    exchange_->cancel();
    Q_EMIT ended(end);
}
