#pragma once

#include <QByteArray>
#include <QObject>

#include <functional>
#include <limits>

namespace localradio {

class StreamOutlet;

/// A text of any length that is made piece by piece. A value.
struct LongText
{
    static constexpr qint64 endless = std::numeric_limits<qint64>::max();

    QByteArray begin;
    std::function<QByteArray(qint64 number)> piece = {}; ///< from 0 on; not needed where there are none
    qint64 pieces = 0;
    QByteArray end = {};
};

/// Sends one long text into an outlet, no faster than the client reads, and closes. A child of its outlet.
class LongTextSender : public QObject
{
    Q_OBJECT

public:
    /// `outlet` has begun.
    LongTextSender(StreamOutlet &outlet, LongText text);

private:
    void send();

    StreamOutlet &outlet_;
    LongText text_;
    qint64 next_ = 0;
};

} // namespace localradio
