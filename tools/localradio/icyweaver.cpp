#include "localradio/icyweaver.h"

#include <algorithm>

namespace localradio {

IcyWeaver::IcyWeaver(TitleAt titleAt)
    : m_titleAt(std::move(titleAt))
{
}

QByteArray IcyWeaver::weave(const QByteArray &audio)
{
    QByteArray woven;
    for (qsizetype at = 0; at < audio.size();) {
        const auto untilBlock = static_cast<qsizetype>(interval - m_audioBytes % interval);
        const qsizetype part = std::min(untilBlock, audio.size() - at);
        woven += QByteArrayView(audio).sliced(at, part);
        at += part;
        m_audioBytes += part;
        if (part == untilBlock) {
            const QByteArray title = m_titleAt(m_audioBytes);
            woven += title == m_title ? QByteArray(1, '\0') : block(title);
            m_title = title;
        }
    }
    return woven;
}

QByteArray IcyWeaver::block(QByteArray title)
{
    constexpr qsizetype unit = 16;
    const QByteArray prefix = "StreamTitle='";
    const QByteArray suffix = "';";
    title.truncate(255 * unit - prefix.size() - suffix.size());
    QByteArray text = prefix + title + suffix;
    const qsizetype units = (text.size() + unit - 1) / unit;
    text.resize(units * unit, '\0');
    return static_cast<char>(units) + text;
}

} // namespace localradio
