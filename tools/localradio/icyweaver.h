#pragma once

#include <QByteArray>

#include <functional>

namespace localradio {

/// Weaves titles into a stream of audio as stream servers with ICY headers do: after every so many bytes of
/// audio stands a block with the title, empty while the title stays the same.
class IcyWeaver
{
public:
    /// Bytes of audio between two blocks, as "icy-metaint" tells.
    static constexpr qsizetype interval = 16000;

    /// The title, in UTF-8, that belongs to the audio at that byte of the stream.
    using TitleAt = std::function<QByteArray(qint64 audioByte)>;

    explicit IcyWeaver(TitleAt titleAt);

    /// `audio` with the blocks that fall into it.
    QByteArray weave(const QByteArray &audio);

    /// A length byte and the title, padded to that length; cut to what a block can hold.
    static QByteArray block(QByteArray title);

private:
    TitleAt titleAt_;
    QByteArray title_; // as last sent
    qint64 audioBytes_ = 0;
};

} // namespace localradio
