#include "playback/stream/bytepipe.h"
#include "playback/stream/hls/hlsplaylist.h"
#include "playback/stream/hls/hlssplicer.h"
#include "playback/stream/hls/hlswindow.h"
#include "playback/stream/streamrequest.h"
#include "playback/stream/streamresolver.h"
#include "playback/stream/streamsource.h"
#include "support/scriptedserver.h"

#include <QTest>
#include <QtEndian>
#include <future>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
/// As a playlist is told in one line: its variants, or its segments, each with what is special about it.
QString summaryOf(const HlsPlaylist &playlist)
{
    QStringList parts;
    for (const HlsVariant &variant : playlist.variants) {
        parts.append(variant.url.toString(QUrl::FullyEncoded) + u' ' + QString::number(variant.bandwidth) +
                     (variant.hasPictures ? u" pictures"_s : QString()));
    }
    for (const HlsSegment &segment : playlist.segments) {
        QString text = QString::number(segment.number) + u' ' + segment.url.toString(QUrl::FullyEncoded) +
                       u' ' + QString::number(segment.duration.count());
        if (segment.range != HlsRange()) {
            text += u" %1+%2"_s.arg(segment.range.from).arg(segment.range.length.value_or(0));
        }
        if (segment.encryption.method == HlsEncryption::Method::Aes128) {
            text += u" key %1 %2"_s.arg(segment.encryption.key.toString(),
                                        QString::fromLatin1(segment.encryption.vector.toHex()));
        }
        text += segment.encryption.method == HlsEncryption::Method::Unknown ? u" unknown"_s : QString();
        text += segment.header ? u" header %1"_s.arg(segment.header->url.toString()) : QString();
        text += segment.title.isEmpty() ? QString() : u" '%1'"_s.arg(QString::fromUtf8(segment.title));
        parts.append(text);
    }
    return parts.join(u"; "_s) + (playlist.isComplete ? u" ends"_s : QString());
}

HlsPlaylist playlistOf(int first, int count)
{
    QByteArray text = "#EXT-X-TARGETDURATION:1\n#EXT-X-MEDIA-SEQUENCE:" + QByteArray::number(first) + '\n';
    for (int number = first; number < first + count; ++number) {
        text += "#EXTINF:1,\n" + QByteArray::number(number) + ".ts?first=" + QByteArray::number(first) + '\n';
    }
    return HlsPlaylist::read(text, QUrl(u"http://h/"_s));
}

/// A packet of a transport stream in which sound for that time begins.
QByteArray packetAt(quint64 time)
{
    QByteArray packet("\x47\x41\x00\x10\x00\x00\x01\xC0\x00\x00\x80\x80\x05", 13);
    packet += static_cast<char>(0x21 | (time >> 29 & 0x0E));
    packet += static_cast<char>(time >> 22);
    packet += static_cast<char>(0x01 | (time >> 14 & 0xFE));
    packet += static_cast<char>(time >> 7);
    packet += static_cast<char>(0x01 | (time << 1 & 0xFE));
    return packet.leftJustified(188, '\xFF');
}

QByteArray box(const QByteArray &type, const QByteArray &body)
{
    QByteArray size(4, '\0');
    qToBigEndian(static_cast<quint32>(body.size() + 8), size.data());
    return size + type + body;
}

QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// The header of a track of sound with 100 ticks a second, and a fragment of it: two samples of 50 ticks
/// each.
QByteArray fileHeader()
{
    const QByteArray zeros(12, '\0');
    return box("ftyp", "isom") +
           box("moov", box("trak", box("tkhd", zeros + number(1)) +
                                       box("mdia", box("mdhd", zeros + number(100)) +
                                                       box("hdlr", zeros.first(8) + "soun"))) +
                           box("mvex", box("trex", number(0) + number(1) + number(1) + number(50))));
}

QByteArray fragmentAt(quint32 time)
{
    return box("moof",
               box("traf", box("tfhd", number(0) + number(1)) + box("tfdt", number(0) + number(time)) +
                               box("trun", number(0) + number(2)))) +
           box("mdat", "sound");
}

/// What a stream delivers, read as a player does.
class Delivery
{
public:
    explicit Delivery(const StreamRequest &request)
        : resolver_(request)
    {
        QObject::connect(&resolver_, &StreamResolver::streamFound, &resolver_, [this](StreamSource *stream) {
            source_.reset(stream);
            QObject::connect(stream, &StreamSource::titleRead, stream,
                             [this](quint64 position, const QByteArray &title) {
                                 titles.append(QByteArray::number(position) + ' ' + title);
                             });
            stream->attach(pipe_);
            stream->start();
        });
        QObject::connect(&resolver_, &StreamResolver::failed, &resolver_, [this] { pipe_->finish(); });
        all_ = std::async(std::launch::async, [pipe = pipe_] {
            QByteArray all;
            std::array<char, 4096> some{};
            while (const qsizetype count = pipe->read(some.data(), some.size())) {
                all.append(some.data(), count);
            }
            return all;
        });
        resolver_.start();
    }

    ~Delivery() { pipe_->cancel(); }

    bool isOver() const { return all_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }
    QByteArray take() { return all_.get(); }

    QByteArrayList titles;

private:
    std::shared_ptr<BytePipe> pipe_ = std::make_shared<BytePipe>();
    StreamResolver resolver_;
    std::unique_ptr<StreamSource> source_;
    std::future<QByteArray> all_;
};
} // namespace

class TestHls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playlists_data();
    void playlists();
    void windows_data();
    void windows();
    void splices_data();
    void splices();
    void deliveries_data();
    void deliveries();
    void headersGoToTheirOwner();
};

void TestHls::playlists_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("summary");
    QTest::newRow("segments")
        << QByteArray(
               "#EXTM3U\r\n#EXT-X-TARGETDURATION:5\r\n#EXT-X-MEDIA-SEQUENCE:7\r\n#EXTINF:4.5,A - B, C\r\n"
               "a%20b.ts?t=%2F\r\n\r\n#EXTINF:5\r\nhttps://c/d\r\n#EXT-X-ENDLIST")
        << u"7 http://h/d/a%20b.ts?t=%2F 4500 'A - B, C'; 8 https://c/d 5000 ends"_s;
    QTest::newRow("other schemes")
        << QByteArray("#EXTINF:1,\nfile:///etc/passwd\n#EXTINF:1,\nconcat:a\n#EXTINF:1,\na\n"
                      "#EXT-X-MAP:URI=\"file:///x\"\n#EXTINF:1,\nb\n#EXT-X-MAP:URI=\"x\"\n#EXT-X-GAP\nc\nd")
        << u"2 http://h/d/a 1000; 5 http://h/d/d 0 header http://h/d/x"_s;
    QTest::newRow("ranges") << QByteArray("#EXT-X-BYTERANGE:10@5\na\n#EXT-X-BYTERANGE:20\na\na")
                            << u"0 http://h/d/a 0 5+10; 1 http://h/d/a 0 15+20; 2 http://h/d/a 0"_s;
    QTest::newRow("keys")
        << QByteArray(
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k,1\",IV=0xFF\na\n"
               "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\nb\n#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"k\"\nc\n"
               "#EXT-X-KEY:METHOD=AES-128,URI=\"file:///k\"\nd\n#EXT-X-KEY:METHOD=AES-128,URI=\"k\",IV=x\ne\n"
               "#EXT-X-KEY:METHOD=NONE\nf")
        << u"0 http://h/d/a 0 key http://h/d/k,1 000000000000000000000000000000ff; "
           "1 http://h/d/b 0 key http://h/d/k ; 2 http://h/d/c 0 unknown; 3 http://h/d/d 0 unknown; "
           "4 http://h/d/e 0 unknown; 5 http://h/d/f 0"_s;
    QTest::newRow("numbers beyond all bounds")
        << QByteArray("#EXT-X-MEDIA-SEQUENCE:99999999999999999999\na\n#EXT-X-MEDIA-SEQUENCE:-1\n"
                      "#EXTINF:1e99,\n#EXT-X-BYTERANGE:99999999999999999999@99999999999999999999\nb\n"
                      "#EXT-X-BYTERANGE:1\nc\n#EXTINF:nan,\nd")
        << u"0 http://h/d/b 3600000 9223372036854775807+9223372036854775807; "
           "1 http://h/d/c 0 18446744073709551614+1; 2 http://h/d/d 0"_s;
    QTest::newRow("variants, the best sound first")
        << QByteArray(
               "#EXT-X-STREAM-INF:BANDWIDTH=9000,RESOLUTION=1x1\nv\n"
               "#EXT-X-STREAM-INF:BANDWIDTH=8000,CODECS=\"avc1.42,mp4a.40.2\"\nw\n"
               "#EXT-X-STREAM-INF:BANDWIDTH=64,CODECS=\"mp4a.40.5\"\nlow\n"
               "#EXT-X-STREAM-INF:BANDWIDTH=99999999999,CODECS=\"fLaC\"\nhigh\n"
               "#EXT-X-STREAM-INF:BANDWIDTH=128\nmid\n#EXT-X-STREAM-INF:BANDWIDTH=1,CODECS=\"xyz\"\nno\n"
               "#EXT-X-STREAM-INF:BANDWIDTH=256\nfile:///no")
        << u"http://h/d/high 2147483647; http://h/d/mid 128; http://h/d/low 64; http://h/d/v 9000 pictures; "
           "http://h/d/w 8000 pictures"_s;
    QTest::newRow("sound of its own")
        << QByteArray("#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",NAME=\"x\",URI=\"other\"\n"
                      "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"g\",DEFAULT=YES,URI=\"sound\"\n"
                      "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"within\",DEFAULT=YES\n"
                      "#EXT-X-MEDIA:TYPE=SUBTITLES,GROUP-ID=\"within\",URI=\"text\"\n"
                      "#EXT-X-STREAM-INF:BANDWIDTH=2,RESOLUTION=1x1,AUDIO=\"g\"\na\n"
                      "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"within\"\nb")
        << u"http://h/d/sound 2; http://h/d/b 1"_s;
}

void TestHls::playlists()
{
    QFETCH(QByteArray, text);
    QTEST(summaryOf(HlsPlaylist::read(text, QUrl(u"http://h/d/list.m3u8"_s))), "summary");
}

void TestHls::windows_data()
{
    QTest::addColumn<QList<HlsPlaylist>>("playlists");
    QTest::addColumn<QList<int>>("numbers");
    QTest::newRow("joined at its end, and followed")
        << QList{playlistOf(10, 6), playlistOf(12, 6)} << QList{13, 14, 15, 16, 17};
    QTest::newRow("a jump") << QList{playlistOf(1, 3), playlistOf(100, 2)} << QList{1, 2, 3, 100, 101};
    QTest::newRow("an old one in between")
        << QList{playlistOf(1, 3), playlistOf(0, 3), playlistOf(2, 3)} << QList{1, 2, 3, 4};
    QTest::newRow("begun anew") << QList{playlistOf(100, 3), playlistOf(0, 4)}
                                << QList{100, 101, 102, 1, 2, 3};
    QTest::newRow("empty at first") << QList{playlistOf(5, 0), playlistOf(5, 1)} << QList{5};
}

void TestHls::windows()
{
    QFETCH(QList<HlsPlaylist>, playlists);
    HlsWindow window;
    QList<int> numbers;
    for (const HlsPlaylist &playlist : playlists) {
        const bool hasNews = window.update(playlist);
        QCOMPARE(window.reloadTime(), std::chrono::milliseconds(hasNews ? 1000 : 500));
        for (; window.next() != nullptr; window.advance()) {
            numbers.append(static_cast<int>(window.next()->number));
        }
    }
    QTEST(numbers, "numbers");
}

void TestHls::splices_data()
{
    QTest::addColumn<QByteArrayList>("segments");
    QTest::addColumn<QByteArray>("stream");
    const QByteArray sound("\xFF\xF1 sound ten");
    const QByteArray tag = "ID3\x04" + QByteArray(5, '\0') + '\x05' + "title";
    QTest::newRow("tags") << QByteArrayList{tag + tag + sound, tag + sound} << sound + sound;
    constexpr quint64 latest = (1ULL << 33) - 1;
    QTest::newRow("times that go on, around the largest")
        << QByteArrayList{packetAt(latest - 89'999) + packetAt(0), packetAt(90'000)}
        << packetAt(latest - 89'999) + packetAt(0) + packetAt(90'000);
    QTest::newRow("times that begin anew")
        << QByteArrayList{packetAt(900'000) + packetAt(990'000) + "cut short", packetAt(5) + packetAt(90'005)}
        << packetAt(900'000) + packetAt(990'000) + packetAt(1'080'000) + packetAt(1'170'000);
    QTest::newRow("fragments whose times jump")
        << QByteArrayList{fileHeader(), fragmentAt(7000), fileHeader() + box("styp", "x") + fragmentAt(0),
                          fragmentAt(100), fragmentAt(4'000'000'000)}
        << fileHeader() + fragmentAt(7000) + fragmentAt(7100) + fragmentAt(7200) + fragmentAt(7300);
    QTest::newRow("a fragment that is cut short")
        << QByteArrayList{fileHeader(), fragmentAt(0).chopped(3), fragmentAt(100)}
        << fileHeader() + fragmentAt(0).chopped(3) + QByteArray(3, '\0') + fragmentAt(100);
    QTest::newRow("boxes that are none")
        << QByteArrayList{fileHeader(), box("moof", box("traf", number(4) + "tfhd")) + number(2) + "moof",
                          number(0xFFFFFFFF) + "mdat12", fragmentAt(0)}
        << fileHeader() + box("moof", box("traf", number(4) + "tfhd")) + number(0xFFFFFFFF) + "mdat12" +
               fragmentAt(0);
}

/// However they come.
void TestHls::splices()
{
    QFETCH(QByteArrayList, segments);
    for (const qsizetype pieceSize : {1, 7, 10'000}) {
        HlsSplicer splicer;
        QByteArray stream;
        for (const QByteArray &segment : segments) {
            splicer.begin();
            for (qsizetype at = 0; at < segment.size(); at += pieceSize) {
                stream += splicer.take(segment.mid(at, pieceSize));
            }
        }
        QTEST(stream, "stream");
    }
}

void TestHls::deliveries_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArrayList>("asked");
    const QByteArray head = "#EXTM3U\n#EXT-X-TARGETDURATION:1\n";
    const QByteArray end = "#EXT-X-ENDLIST\n";
    const auto segments = [](const QByteArrayList &names) {
        return "#EXTINF:1,\n" + names.join("\n#EXTINF:1,\n") + '\n';
    };
    QTest::newRow("complete, from its beginning")
        << head + segments({"a", "b", "c", "a", "b"}) + end
        << QByteArray("aaaaaaaaaabbbbbbbbbbccccccccccaaaaaaaaaabbbbbbbbbb")
        << QByteArrayList{"/list", "/a", "/b", "/c", "/a", "/b"};
    QTest::newRow("live, and given up when it stands still")
        << head + segments({"a", "b", "c", "a", "b"}) << QByteArray("ccccccccccaaaaaaaaaabbbbbbbbbb")
        << QByteArrayList{"/list", "/c", "/a", "/b", "/list", "/list", "/list", "/list"};
    QTest::newRow("redirected") << head + segments({"moved", "b"}) + end << QByteArray("aaaaaaaaaabbbbbbbbbb")
                                << QByteArrayList{"/list", "/moved", "/a", "/b"};
    QTest::newRow("missing") << head + segments({"a", "missing", "c"}) + end
                             << QByteArray("aaaaaaaaaacccccccccc")
                             << QByteArrayList{"/list", "/a", "/missing", "/missing", "/c"};
    QTest::newRow("broken off") << head + segments({"broken", "c"}) + end
                                << QByteArray("0123456789cccccccccc")
                                << QByteArrayList{"/list",   "/broken", "/broken", "/list",
                                                  "/broken", "/broken", "/c"};
    QTest::newRow("nothing there") << head + segments({"missing", "missing", "missing", "a"}) + end
                                   << QByteArray()
                                   << QByteArrayList{"/list",    "/missing", "/missing", "/missing",
                                                     "/missing", "/missing", "/missing"};
    QTest::newRow("ranges, known to the server and not")
        << head + "#EXT-X-BYTERANGE:12@3\nwhole\n#EXT-X-BYTERANGE:11\nwhole\n#EXT-X-BYTERANGE:10@5\npart\n" +
               end
        << QByteArray("DEFGHIJKLMNOPQRSTUVWXYZfghijklmno")
        << QByteArrayList{"/list", "/whole", "/whole", "/part"};
    QTest::newRow("headers") << head + "#EXT-X-MAP:URI=\"head\"\n" + segments({"a", "b"}) +
                                    "#EXT-X-MAP:URI=\"whole\",BYTERANGE=\"10@0\"\n" + segments({"c"}) + end
                             << QByteArray("headheadheaaaaaaaaaabbbbbbbbbbABCDEFGHIJcccccccccc")
                             << QByteArrayList{"/list", "/head", "/a", "/b", "/whole", "/c"};
    QTest::newRow("secret, by number")
        << head + "#EXT-X-MEDIA-SEQUENCE:7\n#EXT-X-KEY:METHOD=AES-128,URI=\"key\"\n" +
               segments({"secret7", "secret8"}) + end
        << QByteArray("first segment, in secretsecond segment, in secret")
        << QByteArrayList{"/list", "/key", "/secret7", "/secret8"};
    QTest::newRow("secret, by vector")
        << head + "#EXT-X-KEY:METHOD=AES-128,URI=\"key\",IV=0x10\n" + segments({"secret16"}) +
               "#EXT-X-KEY:METHOD=NONE\n" + segments({"a"}) + end
        << QByteArray("first segment, in secretaaaaaaaaaa")
        << QByteArrayList{"/list", "/key", "/secret16", "/a"};
    QTest::newRow("secret in another way")
        << head + "#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"key\"\n" + segments({"a"}) + end << QByteArray()
        << QByteArrayList{"/list"};
    QTest::newRow("a key that is none")
        << head + "#EXT-X-KEY:METHOD=AES-128,URI=\"a\"\n" + segments({"b"}) + end << QByteArray()
        << QByteArrayList{"/list", "/a", "/a"};
    QTest::newRow("the next best variant")
        << QByteArray("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nlow\n#EXT-X-STREAM-INF:BANDWIDTH=3\nmissing\n"
                      "#EXT-X-STREAM-INF:BANDWIDTH=2\nlist\n#EXT-X-STREAM-INF:BANDWIDTH=4\npage\n")
        << QByteArray("aaaaaaaaaa")
        << QByteArrayList{"/list",    "/page", "/list", "/page", "/missing", "/list",
                          "/missing", "/list", "/list", "/list", "/low",     "/a"};
}

void TestHls::deliveries()
{
    QFETCH(QByteArray, playlist);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArrayList, asked);
    ScriptedServer server;
    server.scriptBody("/list", playlist);
    server.scriptBody("/low", "#EXTM3U\n#EXT-X-TARGETDURATION:1\na\n#EXT-X-ENDLIST\n");
    for (const char *name : {"a", "b", "c"}) {
        server.scriptBody(QByteArray("/") + name, QByteArray(name).repeated(10));
    }
    server.script("/moved", "HTTP/1.1 302 x\r\nLocation: /a\r\nContent-Length: 0\r\n\r\n");
    server.scriptBody("/page", "<html>\n</html>");
    server.scriptBody("/missing", "none", "404 Not Found");
    server.script("/broken", "HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n0123456789");
    server.scriptBody("/whole", "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    server.script(
        "/part",
        "HTTP/1.1 206 x\r\nContent-Range: bytes 4-20/26\r\nContent-Length: 16\r\n\r\nefghijklmnopqrst");
    server.scriptBody("/head", "headheadhe");
    server.scriptBody("/key", "0123456789abcdef");
    server.scriptBody("/secret7", QByteArray::fromHex("de9861aa8fc8d6da3125529124364db8"
                                                      "63b441688f3c3c165773515f1c92ea5e"));
    server.scriptBody("/secret8", QByteArray::fromHex("a81df862d6164d8eab1a1d208a06b9f9"
                                                      "64712747e51da7dd86105c353498a9fb"));
    server.scriptBody("/secret16", QByteArray::fromHex("ab943a48b91d60b8b0ed9866135f17ca"
                                                       "48ade62a2f98efbb6fdf63954c5f8a9f"));
    Delivery delivery({.url = QUrl(server.address(u"/list"_s))});
    QTRY_VERIFY_WITH_TIMEOUT(delivery.isOver(), 10'000);
    QCOMPARE(delivery.take(), bytes);
    QCOMPARE(server.targets(), asked);
}

/// Whatever belongs to a private station: playlists, segments, what stands before them, and keys.
void TestHls::headersGoToTheirOwner()
{
    ScriptedServer server;
    ScriptedServer other;
    const QByteArray elsewhere = other.address().toLatin1();
    server.scriptBody("/list", "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nsegments\n");
    server.scriptBody("/segments", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXT-X-MAP:URI=\"" + elsewhere +
                                       "/a\"\n#EXTINF:1,One\na\n#EXTINF:1,One\n" + elsewhere +
                                       "/a\n#EXTINF:1,Two\n" + "moved\n#EXT-X-KEY:METHOD=AES-128,URI=\"" +
                                       elsewhere + "/key\"\na\n#EXT-X-ENDLIST\n");
    server.scriptBody("/a", "aaaaaaaaaa");
    server.script("/moved", "HTTP/1.1 302 x\r\nLocation: " + elsewhere + "/a\r\nContent-Length: 0\r\n\r\n");
    other.scriptBody("/a", "oooooooooo");
    other.scriptBody("/key", "0123456789abcdef");
    Delivery delivery({.url = QUrl(server.address(u"/list"_s)), .headers = {{"Authorization", "Basic x"}}});
    QTRY_VERIFY(delivery.isOver());
    QCOMPARE(delivery.take(), QByteArray("ooooooooooaaaaaaaaaaoooooooooooooooooooo"));
    QCOMPARE(delivery.titles, (QByteArrayList{"10 One", "30 Two"}));
    QCOMPARE(server.targets(), (QByteArrayList{"/list", "/segments", "/a", "/moved", "/a"}));
    QCOMPARE(other.targets(), (QByteArrayList{"/a", "/a", "/a", "/key"}));
    for (const QByteArray &sent : server.requests()) {
        QVERIFY(sent.contains("Authorization: Basic x\r\n"));
    }
    for (const QByteArray &sent : other.requests()) {
        QVERIFY(!sent.contains("Authorization"));
    }
}

QTEST_GUILESS_MAIN(TestHls)
#include "tst_hls.moc"
