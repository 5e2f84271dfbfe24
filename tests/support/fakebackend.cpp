#include "support/fakebackend.h"

#include "playback/keypath.h"

QStringList Journal::lines() const
{
    const std::scoped_lock lock(mutex_);
    // A copy that shares nothing: the other thread would not see when it is let go.
    return {lines_.cbegin(), lines_.cend()};
}

void Journal::write(const QString &line)
{
    const std::scoped_lock lock(mutex_);
    lines_.append(line);
}

void Journal::clear()
{
    const std::scoped_lock lock(mutex_);
    lines_.clear();
}

FakeItem::FakeItem(Journal &journal, const StreamRequest &streamRequest)
    : Observed(journal)
    , request(streamRequest)
{
    journal_.write(QStringLiteral("item ") + request.url.toString());
}

FakeItem::~FakeItem()
{
    journal_.write(QStringLiteral("~item"));
}

FakePlayer::FakePlayer(FakeBackend &backend, std::shared_ptr<FakeItem> item)
    : Observed(backend.journal)
    , backend_(backend)
    , item_(std::move(item))
{
    journal_.write(QStringLiteral("player"));
    backend_.player = this;
    ++backend_.livePlayers;
}

FakePlayer::~FakePlayer()
{
    journal_.write(QStringLiteral("~player"));
    --backend_.livePlayers;
    if (backend_.player == this) {
        backend_.player = nullptr;
    }
    // Nothing is heard of a player that has gone.
    backend_.heard.setInfo({});
}

void FakePlayer::reportStatus(int status)
{
    status_ = static_cast<Status>(status);
    notify(KeyPath::status, status);
}

std::shared_ptr<BackendItem> FakeBackend::makeItem(const StreamRequest &request)
{
    const std::scoped_lock gate(itemGate);
    return std::make_shared<FakeItem>(journal, request);
}

std::shared_ptr<BackendPlayer> FakeBackend::makePlayer(const std::shared_ptr<BackendItem> &item)
{
    return std::make_shared<FakePlayer>(*this, std::static_pointer_cast<FakeItem>(item));
}
