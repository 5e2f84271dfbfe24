#include "localradio/catalogue/builtincatalogue.h"
#include "localradio/catalogue/jsoncatalogue.h"
#include "localradio/http/httpserver.h"
#include "localradio/http/streamoutlet.h"
#include "localradio/services/directoryservice.h"
#include "localradio/services/streammounts.h"
#include "localradio/sound/byteloop.h"
#include "localradio/sound/icyweaver.h"
#include "localradio/sound/loops.h"
#include "localradio/sound/oggloop.h"
#include "localradio/sound/soundlibrary.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>
#include <QtEndian>

#include <algorithm>
#include <set>

using namespace localradio;

namespace {

const QString key = QStringLiteral("testkey");

/// JSON written with apostrophes for quotes: moc loses its way in a class with raw strings.
QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

/// The names of the stations in `body`, in order; a single "not well-formed" if it is not XML.
QStringList stationNames(const QByteArray &body)
{
    QStringList names;
    QXmlStreamReader xml(body);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"station") {
            names << xml.attributes().value(QStringLiteral("name")).toString();
        }
    }
    return xml.hasError() ? QStringList{QStringLiteral("not well-formed")} : names;
}

/// The checksum of an Ogg page, bit by bit from its definition.
quint32 oggChecksum(QByteArray page)
{
    page.replace(22, 4, QByteArray(4, '\0'));
    quint32 checksum = 0;
    for (const char byte : page) {
        checksum ^= static_cast<quint32>(static_cast<unsigned char>(byte)) << 24;
        for (int bit = 0; bit < 8; ++bit) {
            checksum = (checksum << 1) ^ ((checksum >> 31) * 0x04c11db7U);
        }
    }
    return checksum;
}

/// A server with the built-in stations and a client of it.
class Exchange
{
public:
    explicit Exchange(double burstSeconds = 16)
        : mounts_(catalogue_, library_, burstSeconds)
    {
        server_.setHandler([this](HttpConnection &connection) {
            if (!mounts_.serve(connection, RequestTarget(connection.request().target))) {
                connection.answer({404, "text/plain", "nothing\n"});
            }
        });
        if (!server_.listen(0)) {
            qFatal("no port");
        }
    }

    const HttpServer &server() const { return server_; }

    /// A client that listens to `station` and asks for titles.
    std::unique_ptr<QTcpSocket> tuneIn(const Station &station) const
    {
        auto client = std::make_unique<QTcpSocket>();
        client->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(QUrl(server_.origin()).port()));
        client->write("GET " + station.streams.last().toUtf8() + " HTTP/1.1\r\nicy-metadata: 1\r\n\r\n");
        return client;
    }

    /// The station with most listeners among those of `format`.
    const Station &first(Format format) const
    {
        return *std::ranges::find_if(catalogue_.stations(), [format](const Station &station) {
            return loopFormat(station.mount->loop) == format;
        });
    }

private:
    BuiltinCatalogue catalogue_;
    SoundLibrary library_{SoundLibrary::defaultDirectory()};
    StreamMounts mounts_;
    HttpServer server_;
};

} // namespace

class LocalRadioTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void directoryAnswers_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<QString>("names"); // or the status, where it is not 200
        const QByteArray top = "/legacy/Top500/?k=testkey";
        const QByteArray search = "/legacy/stationsearch?k=testkey&search=";
        for (const auto &[target, names] : QList<std::pair<QByteArray, QByteArray>>{
                 {top, "Rock & Jazz,Été,a"},
                 {top + "&limit=2", "Rock & Jazz,Été"},
                 {top + "&limit=1,9", "Été,a"},
                 {top + "&limit=0", ""},
                 {top + "&limit=-1", "Rock & Jazz,Été,a"},
                 {top + "&limit=99999999999999999999", "Rock & Jazz,Été,a"},
                 {search + "JAZZ", "Rock & Jazz,Été"},
                 {search + "rock", "Rock & Jazz"},
                 {search + "%C3%A9t%c3%A9", "Été"},
                 {search + "smoky+jazz", "Été"},
                 {search + "smoky%2Bjazz", ""},
                 {search + "river", "Rock & Jazz"},
                 {search + "%26", "Rock & Jazz"},
                 {search + "%zz%", ""},
                 {"/legacy/Top500/", "401"},
                 {"/station/randomstations?k=other&f=xml", "401"},
                 {"/legacy/genrelist?k=testkey", "404"},
                 {"/", "404"},
                 {"/sbin/tunein-station.pls?id=1", "404"},
             }) {
            QTest::newRow(target.constData()) << target << QString::fromUtf8(names);
        }
    }

    void directoryAnswers()
    {
        QFETCH(QByteArray, target);
        const JsonCatalogue catalogue(
            json("[{'name': 'a', 'url': 'http://h/'}, "
                 "{'name': 'Rock & Jazz', 'url': 'http://h/', 'ct': 'The Band - River', 'lc': 2}, "
                 "{'name': 'Été', 'genre': 'Smoky, Jazz', 'url': 'http://h/', 'lc': 1}]"));
        const Answer answer = DirectoryService(catalogue, key, {}).answer(RequestTarget(target));
        QTEST(answer.status == 200 ? stationNames(answer.body).join(u',') : QString::number(answer.status),
              "names");
    }

    /// Whole, each once, and the ten that are seen first sound different.
    void builtinStationsAreListed()
    {
        const BuiltinCatalogue catalogue;
        const DirectoryService service(catalogue, key, {});
        QStringList expected;
        std::set<int> ids;
        std::set<int> firstLoops;
        for (const Station &station : catalogue.stations()) {
            expected << station.name;
            if (ids.size() < 10) {
                firstLoops.insert(station.mount->loop);
            }
            ids.insert(station.id);
        }
        QCOMPARE(ids.size(), catalogue.stations().size());
        QCOMPARE(firstLoops.size(), std::size_t{10});
        QCOMPARE(stationNames(service.answer(RequestTarget("/legacy/Top500/?k=testkey&limit=9999")).body),
                 expected);

        const QByteArray answer =
            service.answer(RequestTarget("/station/randomstations?k=testkey&limit=9999")).body;
        QStringList random = stationNames(answer);
        QVERIFY(random != expected);
        random.sort();
        expected.sort();
        QCOMPARE(random, expected);
        QVERIFY(answer.contains("<response>") && answer.contains("<data><stationlist>"));
    }

    void playlistsNameEveryStream()
    {
        const BuiltinCatalogue catalogue;
        const DirectoryService service(catalogue, key, QStringLiteral("http://127.0.0.1:1"));
        for (const Station &station : catalogue.stations()) {
            const QByteArray id = QByteArray::number(station.id);
            const QByteArray pls = service.answer(RequestTarget("/sbin/tunein-station.pls?id=" + id)).body;
            const QByteArray m3u = service.answer(RequestTarget("/sbin/tunein-station.m3u?id=" + id)).body;
            for (qsizetype i = 0; i < station.streams.size(); ++i) {
                const QByteArray address = "http://127.0.0.1:1" + station.streams[i].toUtf8();
                QVERIFY(pls.contains("\nFile" + QByteArray::number(i + 1) + '=' + address));
                QVERIFY(m3u.contains('\n' + address));
            }
        }
    }

    void cataloguesThatAreRefused_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("not JSON") << QByteArray("[{");
        QTest::newRow("an object") << QByteArray("{}");
        QTest::newRow("no name") << json("[{'url': 'http://h/'}]");
        QTest::newRow("no url") << json("[{'name': 'a'}]");
        QTest::newRow("no web address") << json("[{'name': 'a', 'url': ['http://h/', 'file:///x']}]");
        QTest::newRow("line break in url") << json("[{'name': 'a', 'url': 'http://h/\\nFile2=x'}]");
        QTest::newRow("id twice") << json("[{'id': 7, 'name': 'a', 'url': 'http://h/'}, "
                                          "{'id': 7, 'name': 'b', 'url': 'http://h/'}]");
        QTest::newRow("id no number") << json("[{'id': 'x', 'name': 'a', 'url': 'http://h/'}]");
    }

    void cataloguesThatAreRefused()
    {
        QFETCH(QByteArray, json);
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, JsonCatalogue{json});
    }

    void textsOfAJsonCatalogueAreCleaned()
    {
        const JsonCatalogue catalogue(
            json("[{'name': 'a\\nFile9=\\u0001\\ud800\\uffff<b>', 'url': 'http://h/'}, "
                 "{'name': 'b', 'url': 'http://h/'}]"));
        const DirectoryService service(catalogue, key, {});
        const QByteArray top = service.answer(RequestTarget("/legacy/Top500/?k=testkey")).body;
        QCOMPARE(stationNames(top).size(), 2);
        const QByteArray pls = service.answer(RequestTarget("/sbin/tunein-station.pls?id=1000001")).body;
        QCOMPARE(pls.count("\nFile"), 1);
    }

    void streamsHaveTheirFormat_data()
    {
        QTest::addColumn<Format>("format");
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("frame"); // how one begins
        QTest::addColumn<bool>("hasTitles");
        QTest::newRow("MP3") << Format::Mp3 << QByteArray("audio/mpeg") << QByteArray("\xff\xfb") << true;
        QTest::newRow("AAC") << Format::Aac << QByteArray("audio/aacp") << QByteArray("\xff\xf1") << true;
        QTest::newRow("Ogg") << Format::Ogg << QByteArray("application/ogg") << QByteArray("OggS") << false;
    }

    void streamsHaveTheirFormat()
    {
        QFETCH(Format, format);
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, frame);
        QFETCH(bool, hasTitles);
        const Exchange exchange;
        const Station &station = exchange.first(format);
        const auto client = exchange.tuneIn(station);
        QByteArray answer;
        QTRY_VERIFY((answer += client->readAll()).size() >
                    100'000); // the burst: it lasts longer than is waited
        const qsizetype end = answer.indexOf("\r\n\r\n");
        const QByteArray head = answer.first(end);
        QVERIFY(head.startsWith(station.mount->oldStatusLine ? "ICY 200 OK\r\n" : "HTTP/1.0 200 OK\r\n"));
        QVERIFY(head.contains("\r\nContent-Type: " + type + "\r\n"));
        QVERIFY(head.contains("\r\nicy-name: " + station.name.toUtf8() + "\r\n"));
        QCOMPARE(head.contains("\r\nicy-metaint: 16000"), hasTitles);
        const QByteArray stream = answer.sliced(end + 4);
        QVERIFY(stream.count(frame) > 20); // a listener comes in the middle of one

        if (hasTitles) {
            static const QRegularExpression form(QStringLiteral("^StreamTitle='(.+)';\\x{0}*$"));
            const qsizetype at = IcyWeaver::interval;
            const qsizetype length = qsizetype{16} * static_cast<unsigned char>(stream[at]);
            const QByteArray block = stream.sliced(at + 1, length);
            const QString title = form.match(QString::fromUtf8(block)).captured(1);
            QVERIFY2(station.mount->tracks.contains(title), block.constData());
            const QByteArray next = stream.sliced(at + 1 + length + IcyWeaver::interval);
            QVERIFY(next.startsWith('\0') || next.sliced(1).startsWith("StreamTitle='"));
        }
    }

    /// A player that pauses, for one.
    void clientsThatDoNotReadCostLittle()
    {
        const Exchange exchange(600);
        const auto client = exchange.tuneIn(exchange.first(Format::Mp3));
        client->setReadBufferSize(1);
        const auto unsent = [&exchange] {
            const auto connections = exchange.server().findChildren<HttpConnection *>();
            return connections.isEmpty() ? 0 : connections.first()->unsentBytes();
        };
        QTRY_VERIFY_WITH_TIMEOUT(unsent() >= StreamOutlet::maxUnsentBytes, 20'000);
        QCOMPARE_LT(unsent(), 2 * StreamOutlet::maxUnsentBytes);
    }

    void byteLoopsStartAmidAFrame()
    {
        const QByteArray loop = "\xff"
                                "bc\xff"
                                "ef";
        QCOMPARE(ByteLoop(loop, 0).read(8), QByteArray("bc\xff"
                                                       "ef\xff"
                                                       "bc"));
        QCOMPARE(ByteLoop(loop, 5).read(3), QByteArray("f\xff"
                                                       "b"));
    }

    void oggLoopsAreOneStream()
    {
        QFile file(SoundLibrary::defaultDirectory() + QStringLiteral("/2.ogg"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        OggLoop loop(file.readAll());
        QVERIFY(loop.pageCount() > 100);
        loop.skipTo(loop.pageCount() - 50);
        QByteArray stream;
        while (stream.size() < 5 * file.size() / 2) {
            stream += loop.read(10'000);
        }

        quint32 number = 0;
        qint64 position = 0;
        for (qsizetype at = 0; at < stream.size(); ++number) {
            const OggPage page(stream, at);
            QVERIFY(page.isValid());
            QCOMPARE(qFromLittleEndian<quint32>(page.bytes().constData() + 18), number);
            QCOMPARE(qFromLittleEndian<quint32>(page.bytes().constData() + 22), oggChecksum(page.bytes()));
            if (position > 0) {
                QCOMPARE(page.granulePosition() - position, 9216); // nine blocks, over the seam as well
            }
            position = page.granulePosition();
            at += page.size();
        }
        QVERIFY(position > qint64{2} * loopSamples);
    }

    void programTellsWhereItListens()
    {
        QProcess program;
        program.start(QStringLiteral(LOCALRADIO_PROGRAM));
        QTRY_VERIFY(program.canReadLine());
        static const QRegularExpression ready(
            QStringLiteral("^localradio: listening on http://127\\.0\\.0\\.1:(\\d+)/\n$"));
        const QString port = ready.match(QString::fromUtf8(program.readLine())).captured(1);
        QVERIFY(!port.isEmpty());

        QProcess second;
        second.start(QStringLiteral(LOCALRADIO_PROGRAM), {QStringLiteral("--port"), port});
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 1);
        QVERIFY(second.readAllStandardError().contains(port.toUtf8()));
        program.kill();
        program.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(LocalRadioTest)
#include "localradiotest.moc"
