#pragma once

#include "localradio/catalogue.h"
#include "localradio/loops.h"
#include "localradio/requesttarget.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <array>

namespace localradio {

class HttpConnection;

/// The live streams of a catalogue's stations, at "/stream/ID" with anything after a semicolon.
class StreamMounts : public QObject
{
    Q_OBJECT

public:
    /// `catalogue` must outlive the mounts. New listeners get `burstSeconds` of audio at once. The loops
    /// are read from `loopsDirectory` when they are first heard.
    StreamMounts(const Catalogue &catalogue, QString loopsDirectory, double burstSeconds,
                 QObject *parent = nullptr);

    /// Answers the request of `connection` for `target` with a stream. False, and nothing is answered, if
    /// there is no such mount; a mount whose loop cannot be read answers with status 503.
    bool serve(HttpConnection &connection, const RequestTarget &target);

    /// Where the build has put the loops.
    static QString defaultLoopsDirectory();

private:
    QByteArray loopAudio(int index);

    const Catalogue &catalogue_;
    QString loopsDirectory_;
    double burstSeconds_;
    std::array<QByteArray, loopCount> loops_;
    QElapsedTimer onAir_;
    QTimer pump_; // runs while somebody listens
    int listeners_ = 0;
};

} // namespace localradio
