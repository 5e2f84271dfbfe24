#include "support/localradio.h"
#include "support/pitch.h"
#include "support/scriptedserver.h"
#include "support/stage.h"

#include <QFile>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

/// Every kind of sound that stations send, by every road that leads to it: heard at its pitch.
class TestKinds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void kindsAreHeard_data();
    void kindsAreHeard();
    void roadsLeadToSound_data();
    void roadsLeadToSound();
    void cleanupTestCase() { stage_.reset(); }

private:
    void hear(const QString &address, double pitch);

    LocalRadio radio_;
    QTemporaryDir folder_;
    QString sound_ = folder_.filePath(u"sound.wav"_s);
    std::unique_ptr<Stage> stage_;
};

void TestKinds::initTestCase()
{
    QVERIFY(radio_.isRunning());
    stage_ = std::make_unique<Stage>(radio_.address(), *AudioOutput::fromText(u"pcm:"_s + sound_));
}

void TestKinds::hear(const QString &address, double pitch)
{
    stage_->statuses.clear();
    // What is in it is another station's; the file takes sound as fast as it comes, and some of that has an
    // end.
    QFile::remove(sound_);
    stage_->playback.playRadioFromURL(address, address);
    QTRY_VERIFY2_WITH_TIMEOUT(hasPitch(sound_, pitch), qPrintable(QString::number(strongestPitch(sound_))),
                              Stage::soundTime);
    QVERIFY(!stage_->statuses.contains(Stage::failure.at(1)));
}

void TestKinds::kindsAreHeard_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<double>("pitch");
    const QJsonArray kinds = radio_.kinds();
    QVERIFY(!kinds.isEmpty());
    for (const auto &kind : kinds) {
        QTest::newRow(qPrintable(kind["name"_L1].toString()))
            << kind["path"_L1].toString() << kind["pitch"_L1].toDouble();
    }
}

void TestKinds::kindsAreHeard()
{
    QFETCH(QString, path);
    QFETCH(double, pitch);
    hear(radio_.address() + path, pitch);
}

void TestKinds::roadsLeadToSound_data()
{
    QTest::addColumn<QString>("road");
    const auto list = [](const char *entry) { return u"LIST"_s + QString::fromLatin1(entry); };
    QTest::newRow("pls") << u"RADIO/playlist?entry=SOUND"_s;
    QTest::newRow("m3u") << u"RADIO/playlist?form=m3u&entry=SOUND"_s;
    QTest::newRow("quoted") << list("[playlist]\nFile1=\"SOUND\"\n");
    QTest::newRow("reference") << list("[Reference]\nRef1=SOUND\n");
    QTest::newRow("ASX") << list("<ASX version='3'><Entry><REF HREF='SOUND'></Entry></ASX>");
    QTest::newRow("XSPF") << list("<?xml version='1.0'?><playlist xmlns='http://xspf.org/ns/0/'><trackList>"
                                  "<track><location>SOUND</location></track></trackList></playlist>");
    QTest::newRow("relative") << list("# A station\n/relative\n");
    QTest::newRow("HLS in a playlist") << list("RADIO/hls/high.m3u8\n");
    QTest::newRow("redirect") << u"RADIO/stream/0?redirect=SOUND"_s;
}

void TestKinds::roadsLeadToSound()
{
    QFETCH(QString, road);
    const QJsonObject station = radio_.stations().at(0).toObject();
    const auto inFull = [this](QString text) {
        return text.replace(u"SOUND"_s, radio_.stream(0)).replace(u"RADIO"_s, radio_.address());
    };
    road.replace(u"RADIO/stream/0"_s, radio_.stream(0));
    ScriptedServer server;
    server.script("/relative", "HTTP/1.0 302 x\r\nLocation: " + radio_.stream(0).toLatin1() + "\r\n\r\n");
    if (road.startsWith(u"LIST")) {
        server.scriptBody("/list", inFull(road.mid(4)).toLatin1());
        road = server.address(u"/list"_s);
    }
    const bool isSegmented = QByteArrayView(QTest::currentDataTag()).startsWith("HLS");
    constexpr double segmentsPitch = 830.66;
    hear(inFull(road), isSegmented ? segmentsPitch : station["pitch"_L1].toDouble());
}

QTEST_MAIN(TestKinds)
#include "tst_kinds.moc"
