#include "localradio/sound/hostilesound.h"

#include "localradio/sound/hostilefiles.h"
#include "localradio/sound/madebytes.h"
#include "localradio/sound/oggpage.h"

#include <algorithm>

namespace localradio {

namespace {

constexpr qint64 fillingPiece = qint64{64} * 1024;

/// `head`, and whatever fills what that has announced.
std::unique_ptr<AudioSource> filled(const QByteArray &head, char filler)
{
    return std::make_unique<MadeBytes>(
        [head, filler](qint64 number) { return number == 0 ? head : QByteArray(fillingPiece, filler); });
}

/// The page `number` of a packet that goes on behind it.
QByteArray endlessPage(quint32 serial, qint64 number, int segments)
{
    OggPage page = OggPage::fullOf(QByteArray(qsizetype{segments} * 255, 'x'), number > 0);
    page.setSerialNumber(serial);
    page.setSequenceNumber(static_cast<quint32>(number + (1 << 20)));
    page.updateChecksum();
    return page.bytes();
}

std::unique_ptr<AudioSource> oggPacket(const HostileSound::Play &play, bool amid)
{
    const auto station = play();
    const QByteArray beginning = station->read(1);
    const quint32 serial = OggPage(beginning, 0).serialNumber();
    return std::make_unique<MadeBytes>(
        [=](qint64 number) { return !amid && number == 0 ? beginning : endlessPage(serial, number, 255); });
}

/// The heads of two streams, that of the second with another serial number, as they stand in one file.
QByteArray bothHeads(const QByteArray &first, const QByteArray &second, quint32 serial)
{
    std::vector<OggPage> pages = OggPage::pagesOf(second);
    QByteArray heads;
    for (OggPage &page : pages) {
        page.setSerialNumber(serial);
        page.updateChecksum();
        heads += page.bytes();
        if (page.isFirst()) {
            heads += first; // all streams begin before anything else of one
        }
    }
    return heads;
}

/// The station, and pages of a second stream in between.
std::unique_ptr<AudioSource> oggSecond(const HostileSound::Play &play, bool /*amid*/)
{
    constexpr quint32 serial = 0x5ec0;
    constexpr int segments = 16;
    const std::shared_ptr<AudioSource> station = play();
    return std::make_unique<MadeBytes>([=](qint64 number) {
        return number == 0 ? bothHeads(station->read(1), play()->read(1), serial)
                           : station->read(segments * 255) + endlessPage(serial, number, segments);
    });
}

std::unique_ptr<AudioSource> mp4Atom(const HostileSound::Play & /*play*/, bool /*amid*/)
{
    return filled(mp4WithPicture(), 'x');
}

std::unique_ptr<AudioSource> mp4Bomb(const HostileSound::Play & /*play*/, bool /*amid*/)
{
    return filled(mp4WithBomb(), '\0');
}

std::unique_ptr<AudioSource> webmElement(const HostileSound::Play & /*play*/, bool amid)
{
    return filled(amid ? webmLongBlock() : webmLongHeader(), 'x');
}

std::unique_ptr<AudioSource> tsVideo(const HostileSound::Play & /*play*/, bool /*amid*/)
{
    return std::make_unique<MadeBytes>(tsVideoPackets);
}

} // namespace

const std::array<HostileSound, 6> &HostileSound::all()
{
    static const std::array<HostileSound, 6> all{{
        {QLatin1StringView("ogg-packet"), "application/ogg", 1, oggPacket},
        {QLatin1StringView("ogg-second"), "application/ogg", 2.2, oggSecond},
        {QLatin1StringView("mp4-atom"), "audio/mp4", 1, mp4Atom},
        {QLatin1StringView("mp4-bomb"), "audio/mp4", 1, mp4Bomb},
        {QLatin1StringView("webm-element"), "audio/webm", 1, webmElement},
        {QLatin1StringView("ts-video"), "video/mp2t", 1, tsVideo},
    }};
    return all;
}

} // namespace localradio
