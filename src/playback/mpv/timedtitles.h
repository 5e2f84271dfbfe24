#pragma once

#include <QByteArray>
#include <QtGlobal>
#include <deque>
#include <optional>

/// Tells when a title is heard that stands at some byte of a stream: by where the stream's sound ends when
/// that byte has just been read.
class TimedTitles
{
public:
    void add(quint64 position, const QByteArray &title);

    /// So many bytes have been read, and the sound in the buffer ends there, in seconds of the stream.
    void loaded(quint64 bytesRead, double end);
    /// The title that is heard where the player is, if it is another than the last; the player takes its
    /// sound from the buffer there.
    std::optional<QByteArray> heardAt(double time);

private:
    struct Title
    {
        quint64 position;
        QByteArray text;
        /// None until its byte has been read.
        std::optional<double> time;
    };

    std::deque<Title> waiting_;
    bool isFirst_ = true;
    quint64 bytesRead_ = 0;
    std::optional<double> end_;
};
