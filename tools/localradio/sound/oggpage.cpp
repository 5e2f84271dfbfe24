#include "localradio/sound/oggpage.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <utility>

namespace localradio {

namespace {

// Offsets in the header of a page (RFC 3533, section 6).
constexpr qsizetype flagsAt = 5;
constexpr qsizetype granuleAt = 6;
constexpr qsizetype serialAt = 14;
constexpr qsizetype sequenceAt = 18;
constexpr qsizetype checksumAt = 22;
constexpr qsizetype segmentCountAt = 26;
constexpr qsizetype segmentsAt = 27;

constexpr int fullSegment = 255; // of a packet that goes on

constexpr std::array<quint32, 256> makeChecksumTable()
{
    std::array<quint32, 256> table{};
    for (quint32 i = 0; i < table.size(); ++i) {
        quint32 value = i << 24;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value << 1) ^ ((value & 0x80000000U) != 0 ? 0x04c11db7U : 0U);
        }
        table[i] = value;
    }
    return table;
}

} // namespace

OggPage::OggPage(const QByteArray &data, qsizetype offset)
{
    const QByteArrayView rest = QByteArrayView(data).sliced(std::clamp<qsizetype>(offset, 0, data.size()));
    if (rest.size() < segmentsAt || !rest.startsWith("OggS")) {
        return;
    }
    const auto segments = static_cast<unsigned char>(rest[segmentCountAt]);
    qsizetype size = segmentsAt + segments;
    if (rest.size() < size) {
        return;
    }
    for (const char segment : rest.sliced(segmentsAt, segments)) {
        size += static_cast<unsigned char>(segment);
    }
    if (rest.size() >= size) {
        bytes_ = rest.first(size).toByteArray();
    }
}

OggPage OggPage::fullOf(const QByteArray &part, bool continued)
{
    constexpr qint64 noPacketEnds = -1;
    const qsizetype segments = part.size() / fullSegment;
    QByteArray bytes = "OggS" + QByteArray(segmentsAt - 4, '\0') + QByteArray(segments, '\xff') + part;
    bytes[flagsAt] = continued ? '\1' : '\0';
    bytes[segmentCountAt] = static_cast<char>(segments);
    OggPage page(bytes, 0);
    page.setGranulePosition(noPacketEnds);
    return page;
}

std::vector<OggPage> OggPage::pagesOf(const QByteArray &data)
{
    std::vector<OggPage> pages;
    qsizetype at = 0;
    for (OggPage page(data, at); page.isValid(); page = OggPage(data, at)) {
        at += page.size();
        pages.push_back(page);
    }
    return pages;
}

QList<QByteArray> OggPage::packetsOf(const QByteArray &data)
{
    QList<QByteArray> packets;
    QByteArray packet;
    for (const OggPage &page : pagesOf(data)) {
        const auto segments = static_cast<unsigned char>(page.bytes_[segmentCountAt]);
        qsizetype at = segmentsAt + segments;
        for (const char segment : page.bytes_.mid(segmentsAt, segments)) {
            const auto size = static_cast<unsigned char>(segment);
            packet += page.bytes_.mid(at, size);
            at += size;
            if (size < fullSegment) {
                packets.append(std::exchange(packet, {}));
            }
        }
    }
    return packets;
}

bool OggPage::isFirst() const
{
    return isValid() && (static_cast<unsigned char>(bytes_[flagsAt]) & 0x02U) != 0;
}

bool OggPage::isContinued() const
{
    return isValid() && (static_cast<unsigned char>(bytes_[flagsAt]) & 0x01U) != 0;
}

qint64 OggPage::granulePosition() const
{
    return isValid() ? qFromLittleEndian<qint64>(bytes_.constData() + granuleAt) : 0;
}

void OggPage::setGranulePosition(qint64 position)
{
    if (isValid()) {
        qToLittleEndian(position, bytes_.data() + granuleAt);
    }
}

quint32 OggPage::serialNumber() const
{
    return isValid() ? qFromLittleEndian<quint32>(bytes_.constData() + serialAt) : 0;
}

void OggPage::setSerialNumber(quint32 number)
{
    if (isValid()) {
        qToLittleEndian(number, bytes_.data() + serialAt);
    }
}

void OggPage::setSequenceNumber(quint32 number)
{
    if (isValid()) {
        qToLittleEndian(number, bytes_.data() + sequenceAt);
    }
}

void OggPage::updateChecksum()
{
    if (!isValid()) {
        return;
    }
    static constexpr auto table = makeChecksumTable();
    qToLittleEndian<quint32>(0, bytes_.data() + checksumAt);
    quint32 checksum = 0;
    for (const char byte : std::as_const(bytes_)) {
        checksum = (checksum << 8) ^ table[(checksum >> 24) ^ static_cast<unsigned char>(byte)];
    }
    qToLittleEndian(checksum, bytes_.data() + checksumAt);
}

} // namespace localradio
