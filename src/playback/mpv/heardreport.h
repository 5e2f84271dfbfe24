#pragma once

#include "playback/heardstream.h"

#include <QByteArray>
#include <memory>
#include <mpv/client.h>
#include <optional>

/// Puts together what one core reports of the sound that it plays, and sets it as what the listener hears;
/// clears that when it is destroyed. Each of the values is null where there is none.
class HeardReport
{
public:
    explicit HeardReport(std::shared_ptr<HeardStream> heard);
    ~HeardReport();

    HeardReport(const HeardReport &) = delete;
    HeardReport &operator=(const HeardReport &) = delete;

    /// The tags of the stream and of its server: "metadata".
    void metadataChanged(const mpv_node *metadata);
    /// The sound that has been chosen from the stream: "current-tracks/audio".
    void trackChanged(const mpv_node *track);
    /// "demuxer-cache-state".
    void cacheChanged(const mpv_node *state);
    /// Whether the certificate of the server that the sound comes from could not be verified.
    void setUnverified(bool isUnverified);

private:
    void report();

    std::shared_ptr<HeardStream> heard_;
    QString title_;
    /// The tags as they came last.
    QByteArray titleTag_;
    QByteArray artistTag_;
    QString codec_;
    int bitrate_ = 0;
    int announcedBitrate_ = 0;
    std::optional<int> buffered_;
    bool isUnverified_ = false;
};
