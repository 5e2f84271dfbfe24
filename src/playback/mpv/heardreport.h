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

    /// What the station says that plays, as it came, in place of the stream's tags. An empty one takes the
    /// one before away, and where there was none says nothing.
    void titleHeard(const QByteArray &title);
    /// What the station announces in kbit/s, 0 where it does not; and whether the certificate of the server
    /// that the sound comes from could not be verified.
    void serverChanged(int bitrate, bool isUnverified);
    /// The tags of the stream: "metadata".
    void metadataChanged(const mpv_node *metadata);
    /// The sound that has been chosen from the stream: "current-tracks/audio".
    void trackChanged(const mpv_node *track);
    /// "demuxer-cache-state".
    void cacheChanged(const mpv_node *state);

private:
    void report();

    std::shared_ptr<HeardStream> heard_;
    /// What the station says, and else what the stream's tags do.
    std::optional<QString> toldTitle_;
    QString taggedTitle_;
    /// The tags as they came last.
    QByteArray titleTag_;
    QByteArray artistTag_;
    QString codec_;
    int bitrate_ = 0;
    int announcedBitrate_ = 0;
    std::optional<int> buffered_;
    bool isUnverified_ = false;
};
