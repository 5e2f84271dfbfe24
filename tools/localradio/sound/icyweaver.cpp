#include "localradio/sound/icyweaver.h"

#include <algorithm>

namespace localradio {

IcyWeaver::IcyWeaver(TitleAt titleAt, qsizetype spacing, MakeBlock makeBlock)
    : titleAt_(std::move(titleAt))
    , spacing_(spacing)
    , makeBlock_(makeBlock)
{
}

QByteArray IcyWeaver::weave(const QByteArray &audio)
{
    QByteArray woven;
    for (qsizetype at = 0; at < audio.size();) {
        const auto untilBlock = static_cast<qsizetype>(spacing_ - audioBytes_ % spacing_);
        const qsizetype part = std::min(untilBlock, audio.size() - at);
        woven += QByteArrayView(audio).sliced(at, part);
        at += part;
        audioBytes_ += part;
        if (part == untilBlock) {
            const QByteArray title = titleAt_(audioBytes_);
            woven += title == title_ ? QByteArray(1, '\0') : makeBlock_(title);
            title_ = title;
        }
    }
    return woven;
}

QByteArray IcyWeaver::block(QByteArray title)
{
    const QByteArray prefix = "StreamTitle='";
    const QByteArray suffix = "';";
    title.truncate(maxTextSize - prefix.size() - suffix.size());
    return padded(prefix + title + suffix);
}

QByteArray IcyWeaver::padded(QByteArray text)
{
    constexpr qsizetype unit = 16;
    text.truncate(maxTextSize);
    const qsizetype units = (text.size() + unit - 1) / unit;
    text.resize(units * unit, '\0');
    return static_cast<char>(units) + text;
}

} // namespace localradio
