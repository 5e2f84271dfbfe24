#include "http/httpanswerparser.h"

#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>
#include <limits>
#include <utility>

namespace {
namespace http = boost::beast::http;
using boost::beast::error_code;
using boost::beast::string_view;

QByteArray copyOf(string_view text)
{
    return {text.data(), static_cast<qsizetype>(text.size())};
}
} // namespace

class HttpAnswerParser::Answer : public http::basic_parser<false>
{
public:
    Answer()
    {
        header_limit(maximumHeadBytes);
        body_limit(std::numeric_limits<std::uint64_t>::max());
        eager(true);
    }

    int status = 0;
    HttpHeaders headers;
    QByteArray body;

private:
    void on_request_impl(http::verb, string_view, string_view, int, error_code &) override {}
    void on_response_impl(int code, string_view, int, error_code &) override { status = code; }
    void on_field_impl(http::field, string_view name, string_view value, error_code &) override
    {
        headers.emplaceBack(copyOf(name), copyOf(value));
    }
    void on_header_impl(error_code &) override {}
    void on_body_init_impl(const boost::optional<std::uint64_t> &, error_code &) override {}
    std::size_t on_body_impl(string_view piece, error_code &) override
    {
        body.append(piece.data(), static_cast<qsizetype>(piece.size()));
        return piece.size();
    }
    void on_chunk_header_impl(std::uint64_t, string_view, error_code &) override {}
    std::size_t on_chunk_body_impl(std::uint64_t, string_view piece, error_code &error) override
    {
        return on_body_impl(piece, error);
    }
    void on_finish_impl(error_code &) override {}
};

HttpAnswerParser::HttpAnswerParser()
    : answer_(std::make_unique<Answer>())
{
}

HttpAnswerParser::~HttpAnswerParser() = default;

HttpAnswerParser::State HttpAnswerParser::feed(const QByteArray &bytes)
{
    if (answer_->is_done()) {
        return State::Complete;
    }
    takeIn(bytes);
    error_code error;
    while (!pending_.isEmpty() && !error && !answer_->is_done()) {
        const auto taken = answer_->put(
            boost::asio::buffer(pending_.constData(), static_cast<std::size_t>(pending_.size())), error);
        pending_.remove(0, static_cast<qsizetype>(taken));
        constexpr int informational = 1;
        if (answer_->is_done() && answer_->status / 100 == informational) {
            // The answer proper follows.
            answer_ = std::make_unique<Answer>();
        }
    }
    return state(error && error != http::error::need_more);
}

/// A line of the head may end without its carriage return (RFC 9112, 2.2).
void HttpAnswerParser::takeIn(const QByteArray &bytes)
{
    qsizetype taken = 0;
    while (!headEnded_ && taken < bytes.size()) {
        const char byte = bytes[taken++];
        if (byte == '\n') {
            headEnded_ = !lineBegun_;
            lineBegun_ = false;
            if (!pending_.endsWith('\r')) {
                pending_ += '\r';
            }
        } else if (byte != '\r') {
            lineBegun_ = true;
        }
        pending_ += byte;
    }
    pending_ += QByteArrayView(bytes).sliced(taken);
}

HttpAnswerParser::State HttpAnswerParser::close()
{
    error_code error;
    if (answer_->got_some() && !answer_->is_done()) {
        answer_->put_eof(error);
    }
    return state(error || !answer_->is_done());
}

HttpAnswerParser::State HttpAnswerParser::state(bool failed) const
{
    if (failed) {
        return State::Malformed;
    }
    if (answer_->is_done()) {
        return State::Complete;
    }
    return answer_->is_header_done() ? State::Body : State::Head;
}

int HttpAnswerParser::status() const
{
    return answer_->status;
}

const HttpHeaders &HttpAnswerParser::headers() const
{
    return answer_->headers;
}

QByteArray HttpAnswerParser::takeBody()
{
    return std::exchange(answer_->body, {});
}
