#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <memory>

using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

/// Takes the bytes of one HTTP/1 answer as they come, and tells its status, its headers and its body, with
/// what the transfer has added taken out of it. A head that is too long ends the parsing: how much of an
/// answer is kept besides is for the caller to bound, who takes the body away.
class HttpAnswerParser
{
public:
    /// More than any server sends; RFC 9110, 5.4 leaves the limit to the recipient.
    static constexpr quint32 maximumHeadBytes = 64 * 1024;

    enum class State {
        Head,      ///< more of the head is to come
        Body,      ///< the head is complete, more of the body is to come
        Complete,  ///< the answer is
        Malformed, ///< it is no HTTP, or not all of it came
    };

    HttpAnswerParser();
    ~HttpAnswerParser();

    HttpAnswerParser(const HttpAnswerParser &) = delete;
    HttpAnswerParser &operator=(const HttpAnswerParser &) = delete;

    /// Takes the next bytes; nothing beyond the end of the answer.
    State feed(const QByteArray &bytes);
    /// The server has closed the connection, which ends an answer whose length it did not tell.
    State close();

    int status() const;
    const HttpHeaders &headers() const;
    /// What has come of the body since this was called last.
    QByteArray takeBody();

private:
    class Answer;

    void takeIn(const QByteArray &bytes);
    State state(bool failed) const;

    std::unique_ptr<Answer> answer_;
    QByteArray pending_; // what could not be taken apart yet
    bool headEnded_ = false;
    bool lineBegun_ = false; // of the head
};
