#pragma once

#include "playback/heardstream.h"
#include "playback/observable.h"
#include "playback/soundsettings.h"
#include "playback/stream/streamrequest.h"

#include <memory>

/// One stream that can be played. Reports "playbackLikelyToKeepUp", "loadedTimeRanges", "playbackBufferEmpty"
/// and "playbackBufferFull".
class BackendItem : public Observable
{
public:
    /// In seconds of the stream.
    struct TimeRange
    {
        double start = 0;
        double end = 0;
    };
};

/// Plays one item. Reports "status". Releasing it ends the sound at once.
class BackendPlayer : public Observable
{
public:
    enum Status { Unknown = 0, ReadyToPlay = 1, Failed = 2 };

    virtual Status status() const = 0;
    /// 0 while paused, 1 while playing or trying to.
    virtual float rate() const = 0;
    virtual void play() = 0;
    /// Keeps the connection; the stream goes on being loaded.
    virtual void pause() = 0;
    virtual const BackendItem *currentItem() const = 0;
};

/// Makes items and players. The real one is built on libmpv; tests bring a scripted one.
class Backend
{
public:
    virtual ~Backend() = default;

    /// Called on any thread but one at a time; may take a while. Never null: an item that cannot be made is
    /// one that fails when it is played. The item may be released on any thread.
    virtual std::shared_ptr<BackendItem> makeItem(const StreamRequest &request) = 0;

    /// A player of an item that this backend has made. Main thread. Where an item is given to a second
    /// player, the first one loses it.
    virtual std::shared_ptr<BackendPlayer> makePlayer(const std::shared_ptr<BackendItem> &item) = 0;

    /// How everything sounds from now on: what plays, without a click, and what will. Values out of range are
    /// brought into it. Main thread.
    virtual void setSound(const SoundSettings &settings) = 0;

    /// What is heard of the player that plays; empty without one. Lives as long as the backend. Main thread.
    virtual const HeardStream &heardStream() const = 0;
};

Q_DECLARE_METATYPE(BackendItem::TimeRange)
