#include "base/base64.h"
#include "base/displaytext.h"
#include "base/leadinginteger.h"
#include "directory/keyed/stationdirectory.h"
#include "directory/keyed/tuneinaddress.h"
#include "http/address.h"
#include "http/jsonfecther.h"
#include "support/scriptedserver.h"

#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QByteArray twoStations = R"(<?xml version="1.0" encoding="UTF-8"?>
<stationlist><tunein base="/first"/><tunein base="/sbin/tunein-station.pls" base-m3u="/x"/><wrapped>
<station name="Jazz &amp; &#233;toiles" id="7" br="64k" lc="1200" mt="audio/mpeg"/></wrapped>
<Station name="not one"/><station name="Second" id="8" ct="&lt;b&gt;"/></stationlist>)";

QStringList namesOf(const StationDirectory &directory)
{
    QStringList names;
    for (const StationEntry &entry : directory.radioData()) {
        names.append(entry.text("name"_L1));
    }
    return names;
}

/// A directory client of a scripted server, with what it reports written down.
struct Client
{
    explicit Client(const QString &storedLimit = {})
        : directory({.baseAddress = server.address(u"/"_s)}, [storedLimit] { return storedLimit; })
        , reloaded(&directory, &StationDirectory::answered)
    {
        QObject::connect(&directory, &StationDirectory::statusChanged,
                         [this](const QString &text) { reports.append(text); });
        QObject::connect(&directory, &StationDirectory::busyChanged,
                         [this](bool busy) { reports.append(busy ? u"busy"_s : u"idle"_s); });
    }

    ScriptedServer server;
    StationDirectory directory;
    QSignalSpy reloaded;
    QStringList reports;
};
} // namespace

class TestDirectory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void base64_data();
    void base64();
    void base64DecodesWhatIsNoBase64();
    void basicAuthentication();
    void leadingIntegers_data();
    void leadingIntegers();
    void displayedTextIsTame();
    void percentEscapes();

    void outcomesAreDelivered_data();
    void outcomesAreDelivered();
    void requestHeaders();
    void bodyGoesWithPostAndPutOnly_data();
    void bodyGoesWithPostAndPutOnly();
    void redirectsKeepCredentialsAtHome();

    void requestAddresses_data();
    void requestAddresses();
    void answerBecomesStationList();
    void unusableAnswersLeaveNothing_data();
    void unusableAnswersLeaveNothing();
    void otherModelsOnlyEmptyTheLists();
};

void TestDirectory::base64_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QByteArray() << u""_s;
    QTest::newRow("two paddings") << QByteArray("M") << u"TQ=="_s;
    QTest::newRow("one padding") << QByteArray("Ma") << u"TWE="_s;
    QTest::newRow("no padding") << QByteArray("Man") << u"TWFu"_s;
    QTest::newRow("high bytes") << QByteArray("\xff\x00\xfe\x3e", 4) << u"/wD+Pg=="_s;
}

void TestDirectory::base64()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(Base64::encode(bytes), text);
    QVERIFY(!Base64::encode(bytes).isNull());
    QCOMPARE(Base64::decode(text), std::optional(bytes));
}

void TestDirectory::base64DecodesWhatIsNoBase64()
{
    QCOMPARE(Base64::decode(u"TWE"_s), std::nullopt);
    QCOMPARE(Base64::decode(QString()), std::nullopt);
    QCOMPARE(Base64::decode(u"===="_s), std::optional(QByteArray()));
    QCOMPARE(Base64::decode(u"T!E="_s), Base64::decode(u"TAE="_s));
    QCOMPARE(Base64::decode("TWFuTQ==", 4), std::optional(QByteArray("Man")));
}

void TestDirectory::basicAuthentication()
{
    QCOMPARE(JSonFecther::standardBasicAuthWithUsername(u"user"_s, u"pass"_s), u"Basic dXNlcjpwYXNz"_s);
    QCOMPARE(JSonFecther::standardBasicAuthWithUsername(u"us\u00e9r"_s, u"pass"_s), u"Basic "_s);
    QCOMPARE(JSonFecther::standardBasicAuthWithUsername(QString(), QString()), u"Basic Og=="_s);
}

void TestDirectory::leadingIntegers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("number");
    constexpr qint64 highest = std::numeric_limits<qint64>::max();
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    QTest::newRow("plain") << u"1200"_s << qint64(1200);
    QTest::newRow("with a unit") << u"64k"_s << qint64(64);
    QTest::newRow("blanks and sign") << u" \t-12.9"_s << qint64(-12);
    QTest::newRow("no number") << u"k64"_s << qint64(0);
    QTest::newRow("sign alone") << u"-"_s << qint64(0);
    QTest::newRow("highest") << u"9223372036854775807"_s << highest;
    QTest::newRow("one above") << u"9223372036854775808"_s << highest;
    QTest::newRow("lowest") << u"-9223372036854775808"_s << lowest;
    QTest::newRow("far below") << u"-99999999999999999999"_s << lowest;
}

void TestDirectory::leadingIntegers()
{
    QFETCH(QString, text);
    QTEST(leadingInteger(text), "number");
}

void TestDirectory::displayedTextIsTame()
{
    QCOMPARE(displayText(u"a\nb\tc\u0007d\u202Egnp\u2066x"_s), u"a b cdgnpx"_s);
    QCOMPARE(displayText(u"\u05E9\u200F \u263A"_s), u"\u05E9\u200F \u263A"_s);
    const QString longest = displayText(QString(2'000'000, u'x'));
    QCOMPARE(longest.size(), maximumDisplayLength);
    QVERIFY(longest.endsWith(u'\u2026'));
    // A pair of surrogates at the cut is left out whole.
    const QString faces = displayText(QString(maximumDisplayLength - 2, u'x') + u"\U0001F600\U0001F600"_s);
    QVERIFY(!faces.chopped(1).back().isSurrogate());
}

void TestDirectory::percentEscapes()
{
    QCOMPARE(percentEscaped(u"http://h/a?b=c&d=%41+!$'()*,;@~"_s), "http://h/a?b=c&d=%2541+!$'()*,;@~");
    QCOMPARE(percentEscaped(u"\"#<>[\\]^`{|} \u007f\u00e9"_s),
             "%22%23%3C%3E%5B%5C%5D%5E%60%7B%7C%7D%20%7F%C3%A9");
}

void TestDirectory::outcomesAreDelivered_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QStringList>("outcomes");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: ";
    QTest::newRow("text twice") << head + "1\r\n\r\nx" << QStringList{u"x"_s, u"x"_s};
    QTest::newRow("nothing") << head + "0\r\n\r\n" << QStringList{u"error 204"_s, u""_s};
    QTest::newRow("no UTF-8") << head + "1\r\n\r\n\xff" << QStringList{u"error 204"_s, u"\ufffd"_s};
    QTest::newRow("404 with a body") << QByteArray("HTTP/1.1 404 No\r\nContent-Length: 4\r\n\r\ngone")
                                     << QStringList{u"gone"_s, u"gone"_s};
    QTest::newRow("400 with a body") << QByteArray("HTTP/1.0 400 Bad\r\n\r\nbad")
                                     << QStringList{u"bad"_s, u"bad"_s};
    QTest::newRow("401 with a body") << QByteArray("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=x\r\n"
                                                   "Content-Length: 2\r\n\r\nno")
                                     << QStringList{u"no"_s, u"no"_s};
    QTest::newRow("500 with a body") << QByteArray("HTTP/1.1 500 Oh\r\nContent-Length: 2\r\n\r\noh")
                                     << QStringList{u"oh"_s, u"oh"_s};
    QTest::newRow("cut off") << head + "9\r\n\r\nx" << QStringList{u"error"_s};
    QTest::newRow("closed") << QByteArray("") << QStringList{u"error"_s};
    QTest::newRow("no HTTP") << QByteArray("220 mail.example ESMTP\r\n\r\n") << QStringList{u"error"_s};
    QTest::newRow("redirect to a file")
        << QByteArray("HTTP/1.1 302 x\r\nLocation: file:///etc/passwd\r\n\r\n") << QStringList{u"error"_s};
    QTest::newRow("redirect to itself")
        << QByteArray("HTTP/1.1 302 x\r\nLocation: /\r\nContent-Length: 0\r\n\r\n")
        << QStringList{u"error"_s};
}

void TestDirectory::outcomesAreDelivered()
{
    QFETCH(QByteArray, answer);
    QFETCH(QStringList, outcomes);
    ScriptedServer server;
    server.script("/", answer);
    QStringList delivered;
    JSonFecther::create()->asynchRequest(
        QUrl(server.address(u"/"_s)), {}, std::nullopt, [&delivered](const FetchOutcome &outcome) {
            if (const auto *data = std::get_if<QByteArray>(&outcome)) {
                delivered.append(QString::fromUtf8(*data));
            } else {
                const HttpError &error = std::get<HttpError>(outcome);
                const bool ours = error.domain == "com.Zelmo.ForMac"_L1;
                delivered.append(ours ? u"error %1"_s.arg(error.code) : u"error"_s);
            }
        });
    QVERIFY(delivered.isEmpty());
    QTRY_COMPARE(delivered, outcomes);
    if (answer.contains("Location: /")) {
        QCOMPARE(server.requests().size(), HttpExchange::maximumRedirects + 1);
    }
}

void TestDirectory::requestHeaders()
{
    ScriptedServer server;
    server.scriptBody("/a", "x");
    const auto fetcher = JSonFecther::initWithUsernamePassword(u"user"_s, u"pass"_s);
    int calls = 0;
    fetcher->asynchRequest(QUrl(server.address(u"/a"_s)), {}, QJsonValue(1),
                           [&calls](const auto &) { ++calls; });
    QTRY_COMPARE(calls, 2);
    const QByteArray head = server.requests().constFirst().toLower();
    QVERIFY(head.startsWith("get /a http/1.1\r\n"));
    QVERIFY(head.contains("user-agent: com.zelmo.formac.useragent\r\n"));
    QVERIFY(head.contains("authorization: basic dxnlcjpwyxnz\r\n"));
    QVERIFY(head.contains("cache-control: no-cache\r\n"));
    QVERIFY(head.contains("accept-encoding: ") && head.contains("gzip"));
    QCOMPARE(fetcher->dpResponse()->status, 200);
}

void TestDirectory::bodyGoesWithPostAndPutOnly_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("sent");
    QTest::newRow("POST") << u"POST"_s << true;
    QTest::newRow("PUT") << u"PUT"_s << true;
    QTest::newRow("lower case") << u"post"_s << false;
    QTest::newRow("DELETE") << u"DELETE"_s << false;
}

void TestDirectory::bodyGoesWithPostAndPutOnly()
{
    QFETCH(QString, method);
    QFETCH(bool, sent);
    ScriptedServer server;
    server.scriptBody("/", "x");
    int calls = 0;
    JSonFecther::create()->asynchRequest(QUrl(server.address(u"/"_s)), method, QJsonObject{{u"a"_s, 1}},
                                         [&calls](const auto &) { ++calls; });
    QTRY_COMPARE(calls, 2);
    const QByteArray request = server.requests().constFirst();
    QVERIFY(request.startsWith(method.toLatin1() + " / "));
    QCOMPARE(request.contains("Content-Type: text/xml"), sent);
    QCOMPARE(request.contains("Accept: text/xml"), sent);
    QCOMPARE(request.contains("Content-Length: 7"), sent);
}

void TestDirectory::redirectsKeepCredentialsAtHome()
{
    ScriptedServer home;
    ScriptedServer stranger;
    // A redirect whose body never ends is followed all the same.
    home.script("/", "HTTP/1.1 302 x\r\nLocation: /again\r\n\r\nMoved", ScriptedServer::After::StayOpen);
    home.script("/again", "HTTP/1.1 301 x\r\nLocation: " + stranger.address(u"/there"_s).toLatin1() +
                              "\r\nContent-Length: 0\r\n\r\n");
    stranger.scriptBody("/there", "x");
    int calls = 0;
    JSonFecther::initWithUsernamePassword(u"u"_s, u"p"_s)
        ->asynchRequest(QUrl(home.address(u"/"_s)), {}, std::nullopt, [&calls](const auto &) { ++calls; });
    QTRY_COMPARE(calls, 2);
    QCOMPARE(home.targets(), (QList<QByteArray>{"/", "/again"}));
    QVERIFY(home.requests().at(1).contains("Authorization: "));
    QVERIFY(!stranger.requests().constFirst().contains("Authorization"));
    QVERIFY(stranger.requests().constFirst().contains("com.Zelmo.ForMac.useragent"));
}

void TestDirectory::requestAddresses_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QByteArray>("target");
    const QByteArray key = "k=Rk4TnW8pLq2ZbX7m";
    QTest::newRow("top") << QString() << u"top"_s << "/legacy/Top500/?" + key;
    QTest::newRow("top, limited") << u"100"_s << u"top"_s << "/legacy/Top500/?" + key + "&limit=100";
    QTest::newRow("random") << u"10"_s << u"random"_s << "/station/randomstations?" + key + "&f=xml&limit=10";
    QTest::newRow("search") << QString() << u"jazz+rock+\u00e9&x"_s
                            << "/legacy/stationsearch?" + key + "&search=jazz+rock+%C3%A9&x";
    QTest::newRow("search, escapes") << u"5"_s << u"50%+[x]"_s
                                     << "/legacy/stationsearch?" + key + "&search=50%25+%5Bx%5D&limit=5";
    QTest::newRow("search, rare characters")
        << QString() << u"\"#<>\\^`{|}'\t"_s
        << "/legacy/stationsearch?" + key + "&search=%22%23%3C%3E%5C%5E%60%7B%7C%7D'%09";
}

void TestDirectory::requestAddresses()
{
    QFETCH(QString, limit);
    QFETCH(QString, kind);
    QFETCH(QByteArray, target);
    Client client(limit);
    if (kind == "top"_L1) {
        client.directory.getTop500();
    } else if (kind == "random"_L1) {
        client.directory.getRandomStation();
    } else {
        client.directory.getRadioByQuery(kind);
    }
    QTRY_COMPARE(client.server.targets(), QList<QByteArray>{target});
}

void TestDirectory::answerBecomesStationList()
{
    Client client;
    client.server.scriptBody("/legacy/Top500/", twoStations);
    client.directory.getTop500();
    QCOMPARE(client.reports, (QStringList{u"busy"_s, u"Downloading data"_s}));
    QTRY_COMPARE(client.reloaded.size(), 2);
    QCOMPARE(client.reports.mid(2),
             (QStringList{u"idle"_s, u"Download Complete"_s, u"idle"_s, u"Download Complete"_s}));

    QCOMPARE(namesOf(client.directory), (QStringList{u"Jazz & \u00e9toiles"_s, u"Second"_s}));
    const StationEntry &first = client.directory.radioData().at(0);
    QCOMPARE(first.value("listener"_L1), QVariant(qlonglong(1200)));
    QCOMPARE(first.value("lc"_L1), QVariant(u"1200"_s));
    QCOMPARE(first.value("bitrate"_L1), QVariant(qlonglong(64)));
    const StationEntry &second = client.directory.radioData().at(1);
    QVERIFY(!second.value("bitrate"_L1).isValid());
    QCOMPARE(second.text("ct"_L1), u"<b>"_s);
    QCOMPARE(client.directory.radiocallbackData500().size(), 2);
    QCOMPARE(*client.directory.radiocallbackData500().at(1).value("base"),
             QByteArrayView("/sbin/tunein-station.pls"));
}

void TestDirectory::unusableAnswersLeaveNothing_data()
{
    QTest::addColumn<QByteArray>("answer");
    const QByteArray open = "<stationlist><tunein base=\"/b\"/><station name=\"a\"/>";
    QByteArray deep = open;
    for (int level = 0; level < 100'000; ++level) {
        deep += "<x>";
    }
    QTest::newRow("no XML") << QByteArray("hello");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << open;
    QTest::newRow("error document") << QByteArray("<response><statusCode>401</statusCode></response>");
    QTest::newRow("element before the declaration")
        << "<x/><?xml version=\"1.0\"?>" + open + "</stationlist>";
    QTest::newRow("document type") << "<!DOCTYPE stationlist [<!ENTITY e \"x\">]>" + open + "</stationlist>";
    QTest::newRow("deep") << deep;
    QTest::newRow("long tag") << open + "<station name=\"" + QByteArray(33 * 1024, 'x') +
                                     "\"/></stationlist>";
    QTest::newRow("endless tag") << open + "<station name=\"" + QByteArray(1'000'000, 'x');
    QTest::newRow("NUL") << open + QByteArray("\0</stationlist>", 15);
    QTest::newRow("bad UTF-8") << open + "<station name=\"\xc3\x28\"/></stationlist>";
    QTest::newRow("another encoding")
        << "<?xml version='1.0' encoding='ISO-8859-1'?>" + open + "<station name=\"\xe9\"/></stationlist>";
    QTest::newRow("too many") << open + QByteArray("<station/>").repeated(StationDirectory::maximumStations) +
                                     "</stationlist>";
}

void TestDirectory::unusableAnswersLeaveNothing()
{
    QFETCH(QByteArray, answer);
    Client client;
    client.server.scriptBody("/legacy/Top500/", twoStations);
    client.directory.getTop500();
    QTRY_COMPARE(client.directory.radioData().size(), 2);
    client.reports.clear();

    client.server.scriptBody("/legacy/stationsearch", answer);
    client.directory.getRadioByQuery(u"x"_s);
    QTRY_COMPARE(client.reports.count(u"idle"_s), 2);
    QVERIFY(client.directory.radioData().isEmpty());
    QVERIFY(client.directory.radiocallbackData500().isEmpty());
    QCOMPARE(client.reports.constLast(), u"Download Complete"_s);
    QVERIFY(client.reloaded.size() >= 4);
}

void TestDirectory::otherModelsOnlyEmptyTheLists()
{
    Client client;
    client.server.scriptBody("/any", twoStations);
    client.directory.executeSouthCastAPI(client.server.address(u"/any"_s), 1);
    QTRY_COMPARE(client.reloaded.size(), 2);
    client.directory.executeSouthCastAPI(client.server.address(u"/any"_s), 2);
    QTRY_VERIFY(client.directory.radioData().isEmpty());
    QTRY_COMPARE(client.reports.count(u"Download Complete"_s), 4);
    QCOMPARE(client.reloaded.size(), 2);
}

QTEST_GUILESS_MAIN(TestDirectory)
#include "tst_directory.moc"
