#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

#include <QtEndian>

#include <algorithm>
#include <bit>

namespace localradio {

namespace {

const QByteArray clusterId = QByteArray::fromHex("1f43b675");
const QByteArray unknownSize = QByteArray::fromHex("01ffffffffffffff");
constexpr char timestampId = '\xe7';

/// How many bytes the size of an element takes that begins at `at` (RFC 8794, section 4).
qsizetype sizeLength(const QByteArray &bytes, qsizetype at)
{
    return std::countl_zero(static_cast<unsigned char>(bytes[at])) + 1;
}

/// The clock of a cluster in milliseconds, and what follows it there.
std::pair<qint64, QByteArray> takenApart(const QByteArray &cluster)
{
    const qsizetype timestamp = clusterId.size() + sizeLength(cluster, clusterId.size());
    if (timestamp + 2 > cluster.size() || cluster[timestamp] != timestampId) {
        return {};
    }
    const qsizetype bytes = static_cast<unsigned char>(cluster[timestamp + 1]) & 0x7f;
    qint64 milliseconds = 0;
    for (const char byte : cluster.mid(timestamp + 2, bytes)) {
        milliseconds = milliseconds << 8 | static_cast<unsigned char>(byte);
    }
    return {milliseconds, cluster.mid(timestamp + 2 + bytes)};
}

} // namespace

Turn Turn::ofClusters(const QByteArray &file)
{
    Turn turn;
    qsizetype at = file.indexOf(clusterId);
    turn.header = file.left(std::max(at, qsizetype{0}));
    while (at >= 0) {
        const qsizetype next = file.indexOf(clusterId, at + clusterId.size());
        turn.units.push_back(file.mid(at, next < 0 ? -1 : next - at));
        at = next;
    }
    turn.stamp = [](const QByteArray &unit, qint64 /*number*/, qint64 turns) {
        const auto [milliseconds, rest] = takenApart(unit);
        QByteArray time(8, '\0');
        qToBigEndian(milliseconds + turns * 1000 * kindSamples / kindSampleRate, time.data());
        return clusterId + unknownSize + timestampId + '\x88' + time + rest;
    };
    return turn;
}

} // namespace localradio
