#pragma once

#include <QByteArray>

#include <functional>

namespace localradio {

/// Weaves titles into a stream of audio as stream servers with ICY headers do: after every so many bytes of
/// audio stands a block with the title, empty while the title stays the same.
class IcyWeaver
{
public:
    /// Bytes of audio between two blocks, as "icy-metaint" tells, if nothing else is wanted.
    static constexpr qsizetype interval = 16000;

    /// Bytes after its length byte that a block can have.
    static constexpr qsizetype maxTextSize = qsizetype{255} * 16;

    /// The title, in UTF-8, that belongs to the audio at that byte of the stream.
    using TitleAt = std::function<QByteArray(qint64 audioByte)>;

    /// Makes the block for a title.
    using MakeBlock = QByteArray (*)(QByteArray title);

    /// Puts what `makeBlock` makes after every `spacing` bytes of audio, at least 1.
    explicit IcyWeaver(TitleAt titleAt, qsizetype spacing = interval, MakeBlock makeBlock = block);

    /// `audio` with the blocks that fall into it.
    QByteArray weave(const QByteArray &audio);

    /// A length byte and the title, padded to that length; cut to what a block can hold.
    static QByteArray block(QByteArray title);

    /// A length byte and `text`, padded to that length; cut to what a block can hold.
    static QByteArray padded(QByteArray text);

private:
    TitleAt titleAt_;
    qsizetype spacing_;
    MakeBlock makeBlock_;
    QByteArray title_; // as last sent
    qint64 audioBytes_ = 0;
};

} // namespace localradio
