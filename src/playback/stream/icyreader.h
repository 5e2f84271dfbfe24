#pragma once

#include <QByteArray>
#include <functional>
#include <optional>

struct HttpResponse;

/// Takes the titles out of a stream that has them between its sound, at the interval that the server
/// announces as "icy-metaint", and gives the sound. An interval that is no number above 0 is none.
class IcyReader
{
public:
    /// What a request for such a stream says.
    static constexpr char requestHeader[] = "Icy-MetaData";

    /// Told of each title, as it came, before the sound that follows it.
    using TitleFound = std::function<void(qsizetype soundBefore, const QByteArray &title)>;

    explicit IcyReader(const HttpResponse &response);

    /// The sound among the bytes that come next. `titleFound` learns how much of what is returned stands
    /// before the title.
    QByteArray take(const QByteArray &bytes, const TitleFound &titleFound);

private:
    static std::optional<QByteArray> titleIn(const QByteArray &block);

    qint64 interval_; // 0 for no titles
    qint64 untilBlock_;
    qsizetype blockLength_ = 0; // of the block that is being read; 0 while sound is
    QByteArray block_;
};
