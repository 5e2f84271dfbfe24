#pragma once

#include "playback/backend.h"

#include <QStringList>
#include <mutex>
#include <vector>

/// Lines in the order in which they are written; from any thread.
class Journal
{
public:
    QStringList lines() const;
    void write(const QString &line);
    void clear();

private:
    mutable std::mutex mutex_;
    QStringList lines_;
};

/// A backend's object that writes down who begins and ends to observe what: "+KEYPATH", "-KEYPATH".
template <class Base>
class Observed : public Base
{
public:
    explicit Observed(Journal &journal)
        : journal_(journal)
    {
    }

    void addObserver(Observer *observer, QStringView keyPath) override
    {
        journal_.write(QLatin1Char('+') + keyPath.toString());
        Base::addObserver(observer, keyPath);
    }

    void removeObserver(Observer *observer, QStringView keyPath) override
    {
        journal_.write(QLatin1Char('-') + keyPath.toString());
        Base::removeObserver(observer, keyPath);
    }

protected:
    Journal &journal_;
};

/// An item whose reports are made by a test.
class FakeItem : public Observed<BackendItem>
{
public:
    FakeItem(Journal &journal, const StreamRequest &request);
    ~FakeItem() override;

    void report(QStringView keyPath, const QVariant &value = true) { notify(keyPath, value); }

    const StreamRequest request;
};

class FakeBackend;

/// A player whose status and rate are set by a test.
class FakePlayer : public Observed<BackendPlayer>
{
public:
    FakePlayer(FakeBackend &backend, std::shared_ptr<FakeItem> item);
    ~FakePlayer() override;

    Status status() const override { return status_; }
    float rate() const override { return rate_; }
    void play() override { rate_ = 1; }
    void pause() override { rate_ = 0; }
    const BackendItem *currentItem() const override { return item_.get(); }

    void setRate(float rate) { rate_ = rate; }
    void reportStatus(int status);
    FakeItem &item() { return *item_; }

private:
    FakeBackend &backend_;
    std::shared_ptr<FakeItem> item_;
    Status status_ = Unknown;
    float rate_ = 0;
};

/// Makes fakes and writes down, in order, what is done with them.
class FakeBackend : public Backend
{
public:
    std::shared_ptr<BackendItem> makeItem(const StreamRequest &request) override;
    std::shared_ptr<BackendPlayer> makePlayer(const std::shared_ptr<BackendItem> &item) override;
    void setSound(const SoundSettings &settings) override { sound = settings; }
    const HeardStream &heardStream() const override { return heard; }

    /// "item URL", "player", "+KEYPATH", "-KEYPATH", "~player", "~item".
    Journal journal;
    /// While held, makeItem() waits.
    std::mutex itemGate;
    /// The player made last; null once it has been released.
    FakePlayer *player = nullptr;
    int livePlayers = 0;
    SoundSettings sound;
    /// What a test says that is heard.
    HeardStream heard;
};
