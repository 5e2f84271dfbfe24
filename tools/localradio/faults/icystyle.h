#pragma once

#include "localradio/http/requesttarget.h"
#include "localradio/sound/icyweaver.h"

namespace localradio {

/// How a stream announces its titles and carries them: by default as stream servers do. A value.
struct IcyStyle
{
    QByteArray announcedInterval = QByteArray::number(IcyWeaver::interval); ///< value of "icy-metaint"
    qsizetype interval = IcyWeaver::interval; ///< bytes of audio between two blocks; 0: there are none
    bool oldStatusLine = false;               ///< answers "ICY 200 OK", whoever asks

    /// The title that stands for `track` at that byte of the audio.
    QByteArray (*title)(const QByteArray &track, qint64 audioByte) = sameAsTrack;

    /// The block for a title, length byte included.
    QByteArray (*block)(QByteArray title) = IcyWeaver::block;

    static QByteArray sameAsTrack(const QByteArray &track, qint64 audioByte);

    /// The style with the oddity that the parameter "icy" names, if there is one. Throws BadParameter.
    static IcyStyle read(const RequestTarget &target);
};

} // namespace localradio
