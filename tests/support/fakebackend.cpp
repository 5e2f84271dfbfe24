#include "support/fakebackend.h"

#include "playback/keypath.h"

FakeItem::FakeItem(FakeBackend &backend, const StreamRequest &streamRequest)
    : request(streamRequest)
    , backend_(backend)
{
    backend_.write(QStringLiteral("item ") + request.url.toString());
}

FakeItem::~FakeItem()
{
    backend_.write(QStringLiteral("~item"));
}

void FakeItem::addObserver(Observer *observer, QStringView keyPath)
{
    backend_.write(QLatin1Char('+') + keyPath.toString());
    BackendItem::addObserver(observer, keyPath);
}

void FakeItem::removeObserver(Observer *observer, QStringView keyPath)
{
    backend_.write(QLatin1Char('-') + keyPath.toString());
    BackendItem::removeObserver(observer, keyPath);
}

FakePlayer::FakePlayer(FakeBackend &backend, std::shared_ptr<FakeItem> item)
    : backend_(backend)
    , item_(std::move(item))
{
    backend_.write(QStringLiteral("player"));
    backend_.player = this;
    ++backend_.livePlayers;
}

FakePlayer::~FakePlayer()
{
    backend_.write(QStringLiteral("~player"));
    --backend_.livePlayers;
    if (backend_.player == this) {
        backend_.player = nullptr;
    }
}

void FakePlayer::addObserver(Observer *observer, QStringView keyPath)
{
    backend_.write(QLatin1Char('+') + keyPath.toString());
    BackendPlayer::addObserver(observer, keyPath);
}

void FakePlayer::removeObserver(Observer *observer, QStringView keyPath)
{
    backend_.write(QLatin1Char('-') + keyPath.toString());
    BackendPlayer::removeObserver(observer, keyPath);
}

void FakePlayer::reportStatus(int status)
{
    status_ = static_cast<Status>(status);
    notify(KeyPath::status, status);
}

std::shared_ptr<BackendItem> FakeBackend::makeItem(const StreamRequest &request)
{
    const std::scoped_lock gate(itemGate);
    return std::make_shared<FakeItem>(*this, request);
}

std::shared_ptr<BackendPlayer> FakeBackend::makePlayer(const std::shared_ptr<BackendItem> &item)
{
    return std::make_shared<FakePlayer>(*this, std::static_pointer_cast<FakeItem>(item));
}

QStringList FakeBackend::journal() const
{
    const std::scoped_lock lock(mutex_);
    return journal_;
}

void FakeBackend::clearJournal()
{
    const std::scoped_lock lock(mutex_);
    journal_.clear();
}

void FakeBackend::write(const QString &line)
{
    const std::scoped_lock lock(mutex_);
    journal_.append(line);
}
