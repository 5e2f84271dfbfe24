#include "playback/keypath.h"
#include "session/radiosession.h"
#include "support/fakebackend.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
StationEntry entryOf(const QByteArray &name)
{
    return StationEntry(AttributeMap(QByteArray("name\0id\0", 8), name + '\0' + name + '\0'));
}

/// A directory that never answers, and knows an address for every station but that without an id.
class QuietDirectory : public DirectorySource
{
public:
    void requestTopStations() override {}
    void requestSearch(const QString &) override {}
    void requestGenre(const QString &) override {}
    void requestRandomStations() override {}
    void repeatRequest() override {}
    DirectoryAnswer answer() const override { return {}; }
    QString playAddress(const StationEntry &station) const override
    {
        const QString id = station.text("id"_L1);
        return id.isEmpty() ? QString() : u"http://play/"_s + id;
    }
    QString favouriteAddress(const StationEntry &station) const override
    {
        return u"http://keep/"_s + station.text("id"_L1);
    }
};

/// A radio on fakes, and every value that it has told.
struct Radio
{
    Radio()
        : session(directory, backend,
                  {.timeout = [] { return QVariant(); }, .userAgent = [] { return QVariant(); }})
    {
        QObject::connect(&session, &RadioSession::nowPlayingChanged,
                         [this](const NowPlaying &now) { told.append(now); });
    }

    /// A favourite at the end; one without an address cannot be played.
    StationRecord keep(const QString &name, const QString &url)
    {
        auto station = std::make_shared<RadioModel>();
        station->setName(name);
        if (!url.isNull()) {
            station->setUrl(url);
        }
        session.favourites().add(station);
        return station;
    }
    QString names()
    {
        QString letters;
        for (const StationRecord &station : session.favourites().rack().radioItemCollectionArray()) {
            letters += station->text(RadioField::name);
        }
        return letters;
    }
    bool waitForPlayer()
    {
        return QTest::qWaitFor([this] { return backend.player != nullptr; });
    }
    void report(QStringView keyPath, const QVariant &value) { backend.player->item().report(keyPath, value); }
    PlaybackState state() const { return session.nowPlaying().state; }

    QuietDirectory directory;
    FakeBackend backend;
    RadioSession session;
    QList<NowPlaying> told;
};
} // namespace

class TestRadioSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stationGoesThroughItsStates();
    void everyEndHasItsState_data();
    void everyEndHasItsState();
    void stationsArePlayedByRecord();
    void changeOfStationIsToldOnce();
    void neighboursOfTheFavourite();
    void favouritesAreMadeOfEntries();
    void removalsAreUndone();
};

void TestRadioSession::stationGoesThroughItsStates()
{
    Radio radio;
    QVERIFY(radio.session.playEntry(entryOf("Ava")));
    QVERIFY(radio.waitForPlayer());
    radio.backend.player->reportStatus(BackendPlayer::ReadyToPlay);
    radio.session.playback().togglePause();
    radio.session.playback().togglePause();
    radio.report(KeyPath::playbackLikelyToKeepUp, true);
    radio.backend.heard.setInfo({.title = u" A -\tB "_s, .codec = u"MP3"_s, .bitrate = 128, .buffered = 1});
    // How much waits to be played is no part of the value.
    radio.backend.heard.setInfo({.title = u"A - B"_s, .codec = u"MP3"_s, .bitrate = 128, .buffered = 2});
    radio.report(KeyPath::loadedTimeRanges, QVariantList{1});
    radio.report(KeyPath::loadedTimeRanges, QVariantList{2});
    radio.session.playback().togglePause();
    radio.session.playback().togglePause();
    radio.session.playback().destroyPlayer();

    using enum PlaybackState;
    const NowPlaying sounding{.station = u"Ava"_s, .title = u"A - B"_s, .codec = u"MP3"_s, .bitrate = 128};
    const auto with = [](NowPlaying now, PlaybackState state) {
        now.state = state;
        return now;
    };
    const NowPlaying silent{.station = u"Ava"_s};
    const QList<NowPlaying> expected{
        with(silent, Connecting), with(silent, Paused),      with(silent, Connecting),
        with(silent, Buffering),  with(sounding, Buffering), with(sounding, Playing),
        with(sounding, Paused),   with(sounding, Playing),   NowPlaying()};
    QCOMPARE(radio.told.size(), expected.size());
    for (qsizetype index = 0; index < expected.size(); ++index) {
        QVERIFY2(radio.told.at(index) == expected.at(index), qPrintable(QString::number(index)));
    }
}

void TestRadioSession::everyEndHasItsState_data()
{
    QTest::addColumn<std::function<void(Radio &)>>("end");
    QTest::addColumn<PlaybackState>("state");
    QTest::addColumn<QString>("station");
    using End = std::function<void(Radio &)>;
    const QString named = u"Ava"_s;
    QTest::newRow("stopped") << End([](Radio &radio) { radio.session.playback().destroyPlayer(); })
                             << PlaybackState::Stopped << QString();
    QTest::newRow("buffer full") << End([](Radio &radio) { radio.report(KeyPath::playbackBufferFull, true); })
                                 << PlaybackState::Stopped << QString();
    QTest::newRow("lost") << End([](Radio &radio) { radio.report(KeyPath::playbackBufferEmpty, true); })
                          << PlaybackState::Failed << named;
    QTest::newRow("failed") << End([](Radio &radio) { radio.backend.player->reportStatus(2); })
                            << PlaybackState::Failed << named;
    QTest::newRow("no response") << End([](Radio &radio) { radio.session.playback().timerDone(); })
                                 << PlaybackState::Failed << named;
}

void TestRadioSession::everyEndHasItsState()
{
    QFETCH(std::function<void(Radio &)>, end);
    Radio radio;
    radio.session.playEntry(entryOf("Ava"));
    QVERIFY(radio.waitForPlayer());
    radio.told.clear();
    end(radio);
    QTEST(radio.state(), "state");
    QTEST(radio.session.nowPlaying().station, "station");
    QCOMPARE(radio.told.size(), 1);
    // A failure is over when something else plays.
    radio.session.playEntry(entryOf("Ben"));
    QCOMPARE(radio.state(), PlaybackState::Connecting);
}

void TestRadioSession::stationsArePlayedByRecord()
{
    Radio radio;
    const auto lastAddress = [&radio] {
        radio.waitForPlayer();
        return radio.backend.player->item().request.url.toString();
    };
    QVERIFY(!radio.session.playEntry(entryOf({})));
    QVERIFY(!radio.session.playRecord(nullptr));
    QVERIFY(!radio.session.playRecord(radio.keep(u"no address"_s, {})));
    QVERIFY(radio.told.isEmpty());

    const StationRecord kept = radio.keep(u"Kept"_s, u"http://kept/"_s);
    QVERIFY(radio.session.playRecord(kept));
    QCOMPARE(lastAddress(), u"http://kept/"_s);
    QCOMPARE(radio.session.nowPlaying().artwork, u"QVX-001XY3.png"_s);

    const StationRecord own = radio.keep(u"Own"_s, u"http://own"_s);
    own->setCustom(true);
    QVERIFY(!radio.session.playRecord(own));
    QCOMPARE(radio.session.nowPlaying().station, u"Kept"_s);
    own->setPort(u"8000"_s);
    QVERIFY(radio.session.playRecord(own));
    QCOMPARE(lastAddress(), u"http://own:8000"_s);
    QVERIFY(radio.session.playRecordUrl(own));
    QCOMPARE(lastAddress(), u"http://own"_s);

    // A station without a record leaves nothing of the one before.
    QVERIFY(radio.session.playEntry(entryOf("Ava")));
    QVERIFY(radio.session.nowPlaying().artwork.isEmpty());
}

void TestRadioSession::changeOfStationIsToldOnce()
{
    Radio radio;
    radio.session.playRecord(radio.keep(u"A"_s, u"http://a/"_s));
    QVERIFY(radio.waitForPlayer());
    const StreamInfo sound{.title = u"T"_s, .codec = u"MP3"_s, .bitrate = 128, .buffered = 1};
    radio.backend.heard.setInfo(sound);
    radio.report(KeyPath::loadedTimeRanges, QVariantList{1});
    radio.session.playback().togglePause();
    radio.told.clear();
    radio.session.playEntry(entryOf("B"));
    QCOMPARE(radio.told.size(), 1);
    QVERIFY(radio.told.constFirst() == (NowPlaying{.state = PlaybackState::Connecting, .station = u"B"_s}));
    // And the end of the program, with sound, is not told at all.
    QVERIFY(radio.waitForPlayer());
    radio.backend.heard.setInfo(sound);
}

void TestRadioSession::neighboursOfTheFavourite()
{
    Radio radio;
    QVERIFY(!radio.session.playNextFavourite());
    const StationRecord first = radio.keep(u"A"_s, u"http://a/"_s);
    radio.keep(u"no address"_s, {});
    radio.keep(u"C"_s, u"http://c/"_s);
    const auto playing = [&radio] { return radio.session.nowPlaying().station; };

    QVERIFY(radio.session.playPreviousFavourite());
    QCOMPARE(playing(), u"C"_s);
    radio.session.playback().destroyPlayer();
    QVERIFY(radio.session.playNextFavourite());
    QCOMPARE(playing(), u"A"_s);
    radio.session.playNextFavourite();
    QCOMPARE(playing(), u"C"_s);
    radio.session.playNextFavourite();
    QCOMPARE(playing(), u"A"_s);
    radio.session.playPreviousFavourite();
    QCOMPARE(playing(), u"C"_s);
    // What plays is a favourite no more.
    radio.session.favourites().remove({2});
    radio.session.playNextFavourite();
    QCOMPARE(playing(), u"A"_s);
}

void TestRadioSession::favouritesAreMadeOfEntries()
{
    Radio radio;
    Favourites &favourites = radio.session.favourites();
    favourites.add(entryOf("A"), 0);
    favourites.add(entryOf("B"), 1);
    favourites.add(entryOf("C"), 99);
    QCOMPARE(radio.names(), u"CAB"_s);
    const StationRecords stations = favourites.rack().radioItemCollectionArray();
    QCOMPARE(stations.at(1)->text(RadioField::url), u"http://keep/A"_s);
    QCOMPARE(stations.at(1)->text(RadioField::mid), u"A"_s);
    QVERIFY(stations.at(1)->text(RadioField::radioUuid) != stations.at(2)->text(RadioField::radioUuid));
}

void TestRadioSession::removalsAreUndone()
{
    Radio radio;
    Favourites &favourites = radio.session.favourites();
    for (const QChar name : u"ABCDE"_s) {
        radio.keep(name, u"http://h/"_s);
    }
    QSignalSpy undoable(&favourites, &Favourites::canUndoRemovalChanged);
    favourites.remove({1, 3});
    QCOMPARE(radio.names(), u"ACE"_s);
    QCOMPARE(favourites.rack().selectionIndexes(), QList<qsizetype>{1});
    QVERIFY(favourites.canUndoRemoval());
    QCOMPARE(favourites.undoRemoval(), 1);
    QCOMPARE(radio.names(), u"ABCDE"_s);
    QCOMPARE(favourites.rack().selectionIndexes(), (QList<qsizetype>{1, 3}));
    QVERIFY(!favourites.canUndoRemoval());
    QCOMPARE(undoable.size(), 2);

    // A list that has been changed since keeps its change.
    favourites.remove({0});
    favourites.move(0, 4);
    QVERIFY(!favourites.canUndoRemoval());
    QCOMPARE(favourites.undoRemoval(), -1);
    QCOMPARE(radio.names(), u"CDEB"_s);
}

QTEST_GUILESS_MAIN(TestRadioSession)
#include "tst_radiosession.moc"
