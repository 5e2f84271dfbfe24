#pragma once

#include "playback/backend.h"

#include <memory>

class MpvItem;

/// Plays an MpvItem: its rate, and the item's status as this player reports it.
class MpvPlayer : public BackendPlayer, public std::enable_shared_from_this<MpvPlayer>
{
public:
    explicit MpvPlayer(std::shared_ptr<MpvItem> item);
    ~MpvPlayer() override;

    Status status() const override { return status_; }
    float rate() const override { return rate_; }
    void play() override;
    void pause() override;
    const BackendItem *currentItem() const override;

    /// Called by the item.
    void setStatus(Status status);

private:
    std::shared_ptr<MpvItem> item_;
    Status status_ = Unknown;
    float rate_ = 0;
};
