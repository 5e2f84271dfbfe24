#pragma once

#include <QByteArray>

#include <memory>

namespace localradio {

enum class Format;

/// Encoded audio without end, for one listener: a loop played over and over.
class AudioSource
{
public:
    AudioSource() = default;
    virtual ~AudioSource() = default;
    AudioSource(const AudioSource &) = delete;
    AudioSource &operator=(const AudioSource &) = delete;

    /// The next `bytes` bytes, or somewhat more where the format has larger units. The first call begins
    /// with whatever a decoder needs first.
    virtual QByteArray read(qsizetype bytes) = 0;

    /// A source that plays `loop`, a file of that format, from a place anywhere in it; null if the file
    /// holds nothing to play.
    static std::unique_ptr<AudioSource> create(Format format, const QByteArray &loop);
};

} // namespace localradio
