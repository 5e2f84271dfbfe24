#pragma once

#include <QByteArray>

/// The beginnings of files that announce more than anybody should take.
namespace localradio {

/// An MP4 file up to the bytes of a picture of 256 MB.
QByteArray mp4WithPicture();

/// An MP4 file whose head inflates to 300 MB.
QByteArray mp4WithBomb();

/// A WebM file up to the bytes of a codec's private data, 256 MB of them.
QByteArray webmLongHeader();

/// A cluster up to the bytes of its only block, likewise.
QByteArray webmLongBlock();

/// Some packets of an MPEG transport stream that announces two videos, MPEG-2 and H.264, and sends noise for
/// both.
QByteArray tsVideoPackets(qint64 number);

} // namespace localradio
