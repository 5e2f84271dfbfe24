#include "localradio/icyweaver.h"

#include <algorithm>

namespace localradio {

IcyWeaver::IcyWeaver(TitleAt titleAt)
    : titleAt_(std::move(titleAt))
{
}

QByteArray IcyWeaver::weave(const QByteArray &audio)
{
    QByteArray woven;
    for (qsizetype at = 0; at < audio.size();) {
        const auto untilBlock = static_cast<qsizetype>(interval - audioBytes_ % interval);
        const qsizetype part = std::min(untilBlock, audio.size() - at);
        woven += QByteArrayView(audio).sliced(at, part);
        at += part;
        audioBytes_ += part;
        if (part == untilBlock) {
            const QByteArray title = titleAt_(audioBytes_);
            woven += title == title_ ? QByteArray(1, '\0') : block(title);
            title_ = title;
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
