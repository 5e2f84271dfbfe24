#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

#include <QtEndian>

namespace localradio {

namespace {

/// Changes the number that stands `distance` bytes behind the name of a box.
template <typename Number, typename Change>
void changeNumber(QByteArray &bytes, const char *box, qsizetype distance, Change change)
{
    const qsizetype at = bytes.indexOf(box);
    if (at >= 0 && at + distance + qsizetype{sizeof(Number)} <= bytes.size()) {
        char *const number = bytes.data() + at + distance;
        qToBigEndian<Number>(change(qFromBigEndian<Number>(number)), number);
    }
}

} // namespace

Turn Turn::ofFragments(const QByteArray &file)
{
    Turn turn;
    for (qsizetype at = 0; at + 8 <= file.size();) {
        const auto size = static_cast<qsizetype>(qFromBigEndian<quint32>(file.constData() + at));
        if (size < 8 || at + size > file.size()) {
            break;
        }
        const QByteArray box = file.mid(at, size);
        const QByteArray name = box.mid(4, 4);
        if (name == "ftyp" || name == "moov") {
            turn.header += box;
        } else if (name == "moof") {
            turn.units.push_back(box);
        } else if (name == "mdat" && !turn.units.empty()) {
            turn.units.back() += box;
        }
        at += size;
    }
    turn.stamp = [](QByteArray unit, qint64 number, qint64 turns) {
        constexpr qsizetype behindVersion = 8; // the name, version and flags
        changeNumber<quint32>(unit, "mfhd", behindVersion,
                              [number](quint32) { return static_cast<quint32>(number + 1); });
        changeNumber<quint64>(unit, "tfdt", behindVersion, [turns](quint64 time) {
            return time + static_cast<quint64>(turns * kindSamples);
        });
        return unit;
    };
    return turn;
}

} // namespace localradio
