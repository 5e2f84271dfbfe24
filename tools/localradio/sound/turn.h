#pragma once

#include "localradio/sound/audiosource.h"

#include <QByteArray>

#include <functional>
#include <memory>
#include <vector>

namespace localradio {

/// One turn of encoded sound, which is played over and over as one stream: a unit is told its place in that
/// stream (times, numbers, checksums) when it is asked for. A value.
struct Turn
{
    /// A unit of the file as it stands in the stream: there it is the one of that number, in that turn.
    using Stamp = std::function<QByteArray(const QByteArray &unit, qint64 number, qint64 turn)>;

    QByteArray header; ///< what a decoder needs before any unit
    std::vector<QByteArray> units;
    Stamp stamp = {};                        ///< none: units are the same in every turn
    std::vector<std::size_t> entrances = {}; ///< units that a listener can begin with; none: all

    /// The unit `number` of the stream, from 0 on. There must be units.
    QByteArray unit(qint64 number) const;

    /// MP3, ADTS, LOAS, AC-3 or E-AC-3, in as many units of whole frames as there are in a turn of a kind.
    static Turn ofFrames(const QByteArray &file);

    /// Frames of native FLAC, taken from the only stream of an Ogg file.
    static Turn ofFlac(const QByteArray &oggFile);

    /// A program of an MPEG transport stream, in units of equal length that begin with the program's tables.
    static Turn ofTransportStream(const QByteArray &file);

    /// Fragments of an MP4 file.
    static Turn ofFragments(const QByteArray &file);

    /// Clusters of a WebM file.
    static Turn ofClusters(const QByteArray &file);

    /// Pages of an Ogg file of several streams, one after the other. Every one is entered at its beginning,
    /// and has a serial number of its own however often the turn is played.
    static Turn ofChain(const QByteArray &file);
};

/// Plays a turn without end.
class EndlessTurn : public AudioSource
{
public:
    /// Begins with the first of the turn's units, from the unit `start` on, that can be the first. The turn
    /// must have units.
    EndlessTurn(std::shared_ptr<const Turn> turn, qint64 start);

    QByteArray read(qsizetype bytes) override;

private:
    std::shared_ptr<const Turn> turn_;
    qint64 next_;
    bool begun_ = false;
};

} // namespace localradio
