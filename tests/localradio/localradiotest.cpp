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

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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
        : mounts_(catalogue_, StreamMounts::defaultLoopsDirectory(), burstSeconds)
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

    const BuiltinCatalogue &catalogue() const { return catalogue_; }
    const HttpServer &server() const { return server_; }

    std::unique_ptr<QTcpSocket> send(const QByteArray &bytes) const
    {
        auto client = std::make_unique<QTcpSocket>();
        client->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(QUrl(server_.origin()).port()));
        client->write(bytes);
        return client;
    }

    std::unique_ptr<QTcpSocket> tuneIn(const Station &station, const QByteArray &headers = {}) const
    {
        return send("GET " + station.streams.last().toUtf8() + " HTTP/1.1\r\n" + headers + "\r\n");
    }

    /// The station with most listeners among those that `wanted` picks.
    const Station &first(bool (*wanted)(const Station &)) const
    {
        return *std::ranges::find_if(catalogue_.stations(), wanted);
    }

private:
    BuiltinCatalogue catalogue_;
    StreamMounts mounts_;
    HttpServer server_;
};

bool isMp3(const Station &station)
{
    return loopFormat(station.mount->loop) == Format::Mp3;
}

} // namespace

class LocalRadioTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limits_data()
    {
        QTest::addColumn<QByteArray>("limit");
        QTest::addColumn<QString>("names");
        QTest::newRow("none") << QByteArray() << "a,b,c,d";
        QTest::newRow("count") << QByteArray("&limit=2") << "a,b";
        QTest::newRow("zero") << QByteArray("&limit=0") << "";
        QTest::newRow("skip and count") << QByteArray("&limit=1,2") << "b,c";
        QTest::newRow("beyond the end") << QByteArray("&limit=3,9223372036854775807") << "d";
        QTest::newRow("skip everything") << QByteArray("&limit=9,1") << "";
        QTest::newRow("negative") << QByteArray("&limit=-1") << "a,b,c,d";
        QTest::newRow("too large a number") << QByteArray("&limit=99999999999999999999") << "a,b,c,d";
        QTest::newRow("not a number") << QByteArray("&limit=x,1") << "a,b,c,d";
        QTest::newRow("three numbers") << QByteArray("&limit=1,1,1") << "a,b,c,d";
    }

    void limits()
    {
        QFETCH(QByteArray, limit);
        const JsonCatalogue catalogue(
            json("[{'name': 'd', 'url': 'http://h/'}, "
                 "{'name': 'b', 'url': 'http://h/', 'lc': 30}, {'name': 'c', 'url': 'http://h/', 'lc': 20}, "
                 "{'name': 'a', 'url': 'http://h/', 'lc': 40}]"));
        const DirectoryService service(catalogue, key, {});
        const Answer answer = service.answer(RequestTarget("/legacy/Top500/?k=testkey" + limit));
        QTEST(stationNames(answer.body).join(u','), "names");
    }

    void search_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("names");
        QTest::newRow("genre, any case") << QByteArray("JAZZ") << "Rock & Jazz,Été";
        QTest::newRow("name") << QByteArray("rock") << "Rock & Jazz";
        QTest::newRow("escaped UTF-8") << QByteArray("%c3%89t%C3%A9") << "Été";
        QTest::newRow("lower case of it") << QByteArray("%C3%A9t%C3%A9") << "Été";
        QTest::newRow("plus is a blank") << QByteArray("smoky+jazz") << "Été";
        QTest::newRow("escaped plus is a plus") << QByteArray("smoky%2Bjazz") << "";
        QTest::newRow("current track") << QByteArray("river") << "Rock & Jazz";
        QTest::newRow("escaped ampersand") << QByteArray("%26") << "Rock & Jazz";
        QTest::newRow("broken escape") << QByteArray("%zz%") << "";
        QTest::newRow("nothing") << QByteArray() << "";
    }

    void search()
    {
        QFETCH(QByteArray, text);
        const JsonCatalogue catalogue(
            json("[ "
                 "{'name': 'Rock & Jazz', 'url': 'http://h/', 'ct': 'The Band - River', 'lc': 2}, "
                 "{'name': 'Été', 'genre': 'Smoky, Jazz', 'url': 'http://h/', 'lc': 1}]"));
        const DirectoryService service(catalogue, key, {});
        const Answer answer = service.answer(RequestTarget("/legacy/stationsearch?k=testkey&search=" + text));
        QTEST(stationNames(answer.body).join(u','), "names");
    }

    void keysAndPaths_data()
    {
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<int>("status");
        QTest::newRow("no key") << QByteArray("/legacy/Top500/") << 401;
        QTest::newRow("another key") << QByteArray("/station/randomstations?k=other&f=xml") << 401;
        QTest::newRow("escaped key") << QByteArray("/legacy/Top500/?k=test%6bey") << 200;
        QTest::newRow("unknown method") << QByteArray("/legacy/genrelist?k=testkey") << 404;
        QTest::newRow("unknown path") << QByteArray("/") << 404;
        QTest::newRow("unknown station") << QByteArray("/sbin/tunein-station.pls?id=1") << 404;
        QTest::newRow("no station") << QByteArray("/sbin/tunein-station.pls") << 404;
        QTest::newRow("known station") << QByteArray("/sbin/tunein-station.pls?id=7") << 200;
    }

    void keysAndPaths()
    {
        QFETCH(QByteArray, target);
        const JsonCatalogue catalogue(json("[{'id': 7, 'name': 'a', 'url': 'http://h/'}]"));
        const Answer answer = DirectoryService(catalogue, key, {}).answer(RequestTarget(target));
        QTEST(answer.status, "status");
    }

    void allBuiltinStationsSurviveXml()
    {
        const BuiltinCatalogue catalogue;
        const DirectoryService service(catalogue, key, {});
        QStringList expected;
        for (const Station &station : catalogue.stations()) {
            expected << station.name;
        }
        const QByteArray top = service.answer(RequestTarget("/legacy/Top500/?k=testkey&limit=9999")).body;
        QCOMPARE(stationNames(top), expected);

        QStringList random =
            stationNames(service.answer(RequestTarget("/station/randomstations?k=testkey&limit=9999")).body);
        QVERIFY(random != expected);
        random.sort();
        expected.sort();
        QCOMPARE(random, expected);
    }

    void randomStationsComeWrapped()
    {
        const BuiltinCatalogue catalogue;
        const Answer answer = DirectoryService(catalogue, key, {})
                                  .answer(RequestTarget("/station/randomstations?k=testkey&f=xml"));
        QCOMPARE(stationNames(answer.body).size(), 20);
        QXmlStreamReader xml(answer.body);
        QVERIFY(xml.readNextStartElement() && xml.name() == u"response");
        QVERIFY(xml.readNextStartElement() && xml.name() == u"statusCode");
        QCOMPARE(xml.readElementText(), QStringLiteral("200"));
        QVERIFY(xml.readNextStartElement() && xml.name() == u"statusText");
        xml.skipCurrentElement();
        QVERIFY(xml.readNextStartElement() && xml.name() == u"data");
        QVERIFY(xml.readNextStartElement() && xml.name() == u"stationlist");
        QVERIFY(xml.readNextStartElement() && xml.name() == u"tunein");
    }

    void builtinStationsDiffer()
    {
        const BuiltinCatalogue catalogue;
        QCOMPARE(catalogue.toJson(), BuiltinCatalogue().toJson());
        std::set<int> ids;
        std::set<int> firstLoops;
        std::set<Format> firstFormats;
        for (const Station &station : catalogue.stations()) {
            if (ids.size() < 10) {
                firstLoops.insert(station.mount->loop);
                firstFormats.insert(loopFormat(station.mount->loop));
            }
            ids.insert(station.id);
            QVERIFY(station.currentTrack.isEmpty() || station.mount->tracks.contains(station.currentTrack));
        }
        QCOMPARE(ids.size(), catalogue.stations().size());
        QCOMPARE(firstLoops.size(), std::size_t{10});
        QCOMPARE(firstFormats.size(), std::size_t{3});
    }

    void playlistsNameEveryStream()
    {
        const BuiltinCatalogue catalogue;
        const DirectoryService service(catalogue, key, QStringLiteral("http://127.0.0.1:1"));
        std::set<qsizetype> entries;
        std::set<bool> crlf;
        for (const Station &station : catalogue.stations()) {
            const QByteArray id = QByteArray::number(station.id);
            const QByteArray pls = service.answer(RequestTarget("/sbin/tunein-station.pls?id=" + id)).body;
            const QByteArray m3u = service.answer(RequestTarget("/sbin/tunein-station.m3u?id=" + id)).body;
            for (qsizetype i = 0; i < station.streams.size(); ++i) {
                const QByteArray address = "http://127.0.0.1:1" + station.streams[i].toUtf8();
                QVERIFY(pls.contains("\nFile" + QByteArray::number(i + 1) + '=' + address +
                                     (station.crlfPlaylist ? "\r\n" : "\n")));
                QVERIFY(m3u.contains('\n' + address));
            }
            QVERIFY(pls.contains("numberofentries=" + QByteArray::number(station.streams.size())));
            QCOMPARE(pls.count('\r'), station.crlfPlaylist ? pls.count('\n') : 0);
            entries.insert(station.streams.size());
            crlf.insert(station.crlfPlaylist);
        }
        QCOMPARE(entries, (std::set<qsizetype>{1, 2, 3}));
        QCOMPARE(crlf.size(), std::size_t{2});
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

    void requestHeads_data()
    {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<QByteArray>("status");
        QTest::newRow("plain") << QByteArray("GET / HTTP/1.1\r\nHost: h\r\n\r\n") << QByteArray("404");
        QTest::newRow("LF alone") << QByteArray("GET / HTTP/1.0\n\n") << QByteArray("404");
        QTest::newRow("HEAD") << QByteArray("HEAD / HTTP/1.1\r\n\r\n") << QByteArray("404");
        QTest::newRow("POST") << QByteArray("POST / HTTP/1.1\r\n\r\nbody") << QByteArray("405");
        QTest::newRow("no words") << QByteArray("\r\n\r\n") << QByteArray("400");
        QTest::newRow("no version") << QByteArray("GET /\r\n\r\n") << QByteArray("400");
        QTest::newRow("no path") << QByteArray("GET http://h HTTP/1.1\r\n\r\n") << QByteArray("400");
        QTest::newRow("no colon") << QByteArray("GET / HTTP/1.1\r\nHost\r\n\r\n") << QByteArray("400");
        QTest::newRow("zero byte") << QByteArray("GET /_ HTTP/1.1\r\n\r\n").replace('_', '\0')
                                   << QByteArray("400");
        QTest::newRow("garbage") << QByteArray("\x16\x03\x01\xff\n\n") << QByteArray("400");
        QTest::newRow("long line") << "GET /" + QByteArray(100'000, 'a') << QByteArray("431");
        QTest::newRow("many headers") << "GET / HTTP/1.1\r\n" + QByteArray("a: b\r\n").repeated(5000) + "\r\n"
                                      << QByteArray("431");
    }

    void requestHeads()
    {
        QFETCH(QByteArray, head);
        QFETCH(QByteArray, status);
        const Exchange exchange;
        const auto client = exchange.send(head);
        QTRY_COMPARE(client->state(), QAbstractSocket::UnconnectedState);
        const QByteArray answer = client->readAll();
        QVERIFY2(answer.startsWith("HTTP/1.1 " + status + ' '), answer.constData());
        QCOMPARE(answer.endsWith("\r\n\r\n"), head.startsWith("HEAD"));
        QTRY_VERIFY(exchange.server().findChildren<HttpConnection *>().isEmpty());
    }

    void streamsBurstAndCarryTitles()
    {
        const Exchange exchange;
        const Station &station = exchange.first(isMp3);
        const auto client = exchange.tuneIn(station, "icy-metadata: 1\r\n");
        QByteArray answer;
        QTRY_VERIFY((answer += client->readAll()).size() > 256000);
        const qsizetype end = answer.indexOf("\r\n\r\n");
        const QByteArray head = answer.first(end);
        QVERIFY(head.startsWith("HTTP/1.0 200 OK\r\n"));
        QVERIFY(head.contains("\r\nContent-Type: audio/mpeg\r\n"));
        QVERIFY(head.contains("\r\nicy-name: " + station.name.toUtf8() + "\r\n"));
        QVERIFY(head.contains("\r\nicy-metaint: 16000"));

        const QByteArray stream = answer.sliced(end + 4);
        const qsizetype length = qsizetype{16} * static_cast<unsigned char>(stream[IcyWeaver::interval]);
        const QByteArray block = stream.sliced(IcyWeaver::interval + 1, length);
        static const QRegularExpression form(QStringLiteral("^StreamTitle='(.+)';\\x{0}*$"));
        const QString title = form.match(QString::fromUtf8(block)).captured(1);
        QVERIFY2(station.mount->tracks.contains(title), block.constData());
    }

    void streamsWithoutTitles()
    {
        const Exchange exchange;
        const Station &ogg = exchange.first(
            [](const Station &station) { return loopFormat(station.mount->loop) == Format::Ogg; });
        const Station &old =
            exchange.first([](const Station &station) { return station.mount->oldStatusLine; });
        const auto oggClient = exchange.tuneIn(ogg, "Icy-MetaData: 1\r\n");
        const auto oldClient = exchange.tuneIn(old);
        QTRY_VERIFY(oggClient->bytesAvailable() > 100'000 && oldClient->bytesAvailable() > 100'000);
        const QByteArray oggAnswer = oggClient->readAll();
        QVERIFY(oggAnswer.contains("\r\n\r\nOggS"));
        QVERIFY(!oggAnswer.contains("icy-metaint"));
        const QByteArray oldAnswer = oldClient->readAll();
        QVERIFY(oldAnswer.startsWith("ICY 200 OK\r\n"));
        QVERIFY(!oldAnswer.contains("icy-metaint"));
    }

    void clientsThatDoNotReadCostLittle()
    {
        for (const char *query : {"", "?body=endless", "?body=random", "?body=zeros"}) {
            const Exchange exchange(600);
            const auto client = exchange.send("GET " + exchange.first(isMp3).streams.last().toUtf8() + query +
                                              " HTTP/1.1\r\n\r\n");
            client->setReadBufferSize(1);
            const auto unsent = [&exchange] {
                const auto connections = exchange.server().findChildren<HttpConnection *>();
                return connections.isEmpty() ? 0 : connections.first()->unsentBytes();
            };
            QTRY_VERIFY_WITH_TIMEOUT(unsent() >= StreamOutlet::maxUnsentBytes, 20'000);
            QCOMPARE(unsent() / 4, StreamOutlet::maxUnsentBytes / 4); // random bytes come in words
        }
    }

    void titleBlocks()
    {
        QCOMPARE(IcyWeaver::block("abc"), QByteArray("\x02StreamTitle='abc';") + QByteArray(14, '\0'));
        QCOMPARE(IcyWeaver::block("a"), QByteArray("\x01StreamTitle='a';"));
        QCOMPARE(IcyWeaver::block(QByteArray(9999, 'a')).size(), 1 + 255 * 16);

        const auto titleAt = [](qint64 at) { return at < 3 * IcyWeaver::interval ? "one" : "two"; };
        const QByteArray audio(4 * IcyWeaver::interval, '-');
        QByteArray expected;
        for (const QByteArray &block :
             {IcyWeaver::block("one"), QByteArray(1, '\0'), IcyWeaver::block("two"), QByteArray(1, '\0')}) {
            expected += audio.first(IcyWeaver::interval) + block;
        }
        IcyWeaver whole(titleAt);
        QCOMPARE(whole.weave(audio), expected);
        IcyWeaver bits(titleAt);
        QByteArray woven;
        for (qsizetype at = 0; at < audio.size(); at += 999) {
            woven += bits.weave(audio.mid(at, 999));
        }
        QCOMPARE(woven, expected);
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
        QFile file(StreamMounts::defaultLoopsDirectory() + QStringLiteral("/2.ogg"));
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

    void programTellsWhereItListensAndLogs()
    {
        QProcess program;
        program.start(QStringLiteral(LOCALRADIO_PROGRAM), {QStringLiteral("--log"), QStringLiteral("-")});
        QTRY_VERIFY(program.canReadLine());
        static const QRegularExpression ready(
            QStringLiteral("^localradio: listening on http://127\\.0\\.0\\.1:(\\d+)/\n$"));
        const QString port = ready.match(QString::fromUtf8(program.readLine())).captured(1);
        QVERIFY(!port.isEmpty());
        QTRY_VERIFY(program.canReadLine());
        QVERIFY(program.readLine().startsWith("localradio: second port on http://127.0.0.1:"));

        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, port.toUShort());
        client.write("GET /a%20b?\xc3 HTTP/1.1\r\nX-odd:  b\r\nx-Odd: a\r\n\r\n");
        QTRY_VERIFY(program.canReadLine());
        const QJsonObject entry = QJsonDocument::fromJson(program.readLine()).object();
        QCOMPARE(entry[QLatin1StringView("target")].toString(), QStringLiteral("/a%20b?\u00c3"));
        QCOMPARE(QJsonDocument(entry[QLatin1StringView("headers")].toArray()).toJson(QJsonDocument::Compact),
                 json("[['X-odd','b'],['x-Odd','a']]"));

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
