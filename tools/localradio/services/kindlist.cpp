#include "localradio/services/kindlist.h"

#include "localradio/sound/segments.h"
#include "localradio/sound/soundlibrary.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace localradio {

namespace {

struct HlsKind
{
    const char *name;
    const char *target; ///< below "/hls/"
    const char *sound = "high-ts";
};

constexpr std::array hlsKinds{
    HlsKind{"hls-ts", "high.m3u8"},
    HlsKind{"hls-fmp4", "high.m3u8?form=fmp4", "high-fmp4"},
    HlsKind{"hls-aac", "high.m3u8?form=aac", "high-aac"},
    HlsKind{"hls-event", "high.m3u8?list=event&window=20"},
    HlsKind{"hls-vod", "high.m3u8?list=vod&window=16"},
    HlsKind{"hls-vod-fmp4", "high.m3u8?list=vod&window=16&form=fmp4", "high-fmp4"},
    HlsKind{"hls-master", "master.m3u8"},
    HlsKind{"hls-master-fmp4", "master.m3u8?form=fmp4", "high-fmp4"},
    HlsKind{"hls-master-aac", "master.m3u8?form=aac", "high-aac"},
    HlsKind{"hls-one-variant", "master.m3u8?variants=mid", "mid-ts"},
    HlsKind{"hls-video", "master.m3u8?variants=video", "video-ts"},
    HlsKind{"hls-renditions", "master.m3u8?renditions=1"},
    HlsKind{"hls-video-rendition", "master.m3u8?variants=video&renditions=1"},
    HlsKind{"hls-aes", "high.m3u8?key=aes"},
    HlsKind{"hls-aes-iv", "high.m3u8?key=aes-iv"},
    HlsKind{"hls-rotate", "high.m3u8?key=rotate"},
    HlsKind{"hls-aac-aes", "high.m3u8?form=aac&key=aes", "high-aac"},
    HlsKind{"hls-root", "master.m3u8?address=root"},
    HlsKind{"hls-absolute", "master.m3u8?address=absolute"},
    HlsKind{"hls-port", "master.m3u8?address=port"},
    HlsKind{"hls-redirect", "master.m3u8?redirect=port&segment-redirect=port"},
    HlsKind{"hls-ranges", "high.m3u8?ranges=1"},
    HlsKind{"hls-ranges-fmp4", "high.m3u8?ranges=1&form=fmp4", "high-fmp4"},
    HlsKind{"hls-discontinuity", "high.m3u8?discontinuity=1"},
    HlsKind{"hls-discontinuity-fmp4", "high.m3u8?discontinuity=1&form=fmp4", "high-fmp4"},
};

QString text(std::string_view name)
{
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

QByteArray kindList()
{
    QJsonArray list;
    for (const Kind &kind : kinds) {
        if (!kind.isStream) {
            continue;
        }
        QJsonObject object{{QStringLiteral("name"), text(kind.name)},
                           {QStringLiteral("path"), QStringLiteral("/kind/") + text(kind.name)},
                           {QStringLiteral("mt"), QLatin1StringView(kind.mediaType)},
                           {QStringLiteral("pitch"), kindPitch(kind)}};
        if (kind.container == Container::Chain) {
            QJsonArray titles;
            for (const std::string_view title : linkTitles) {
                titles.append(text(linkArtist) + QStringLiteral(" - ") + text(title));
            }
            object[QStringLiteral("titles")] = titles;
        }
        list.append(object);
    }
    for (const HlsKind &kind : hlsKinds) {
        const auto path = QStringLiteral("/hls/") + QLatin1StringView(kind.target);
        QJsonObject object{{QStringLiteral("name"), QLatin1StringView(kind.name)},
                           {QStringLiteral("path"), path},
                           {QStringLiteral("mt"), QStringLiteral("application/vnd.apple.mpegurl")},
                           {QStringLiteral("pitch"), kindPitch(*findKind(kind.sound))}};
        if (path.contains(u"list=vod")) {
            object[QStringLiteral("seconds")] = 16 * segmentSeconds;
        }
        list.append(object);
    }
    return QJsonDocument(list).toJson();
}

} // namespace localradio
