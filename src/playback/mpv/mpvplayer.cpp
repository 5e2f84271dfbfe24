#include "playback/mpv/mpvplayer.h"

#include "playback/keypath.h"
#include "playback/mpv/mpvitem.h"

MpvPlayer::MpvPlayer(std::shared_ptr<MpvItem> item)
    : item_(std::move(item))
{
    item_->attach(this);
}

MpvPlayer::~MpvPlayer()
{
    item_->detach(this);
}

void MpvPlayer::play()
{
    rate_ = 1;
    item_->setRunning(true);
}

void MpvPlayer::pause()
{
    rate_ = 0;
    item_->setRunning(false);
}

const BackendItem *MpvPlayer::currentItem() const
{
    return item_.get();
}

void MpvPlayer::setStatus(Status status)
{
    // An observer may release this player.
    const auto alive = weak_from_this().lock();
    status_ = status;
    notify(KeyPath::status, static_cast<int>(status));
}
