#pragma once

#include <QString>
#include <optional>

/// Where the sound goes.
class AudioOutput
{
public:
    /// The sound server, or the first of the usual ones that answers.
    static AudioOutput automatic() { return AudioOutput(Kind::Automatic, {}); }

    /// From "null", which plays in time but unheard, or "pcm:FILE", which writes a WAV file as fast as the
    /// stream comes. Nothing for any other text.
    static std::optional<AudioOutput> fromText(const QString &text);

    bool isAutomatic() const { return kind_ == Kind::Automatic; }
    bool isFile() const { return kind_ == Kind::File; }
    /// The path of the file; empty where there is none.
    const QString &file() const { return file_; }

private:
    enum class Kind { Automatic, Null, File };

    AudioOutput(Kind kind, const QString &file)
        : kind_(kind)
        , file_(file)
    {
    }

    Kind kind_;
    QString file_;
};
