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

    /// \a audio with the blocks that fall into it.
    QByteArray weave(const QByteArray &audio);

    /// A length byte and the title, padded to that length; cut to what a block can hold.
    static QByteArray block(QByteArray title);

private:
    TitleAt m_titleAt;
    QByteArray m_title; // as last sent
    qint64 m_audioBytes = 0;
};

} // namespace localradio
