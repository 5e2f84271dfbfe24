#include "playback/stream/playlist.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestPlaylist : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kinds_data();
    void kinds();
    void entries_data();
    void entries();
    void segments_data();
    void segments();
    void hostileTextTakesNoTime_data();
    void hostileTextTakesNoTime();
};

void TestPlaylist::kinds_data()
{
    using Kind = Playlist::Kind;
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("pls") << QByteArray("\xef\xbb\xbf\r\n[PlayList]\nFile1=") << Kind::Playlist;
    QTest::newRow("pls after another line") << QByteArray("; My station\n[playlist]\n") << Kind::Playlist;
    QTest::newRow("reference") << QByteArray("[Reference]\r\nRef1=") << Kind::Playlist;
    QTest::newRow("m3u") << QByteArray("#EXTM3U\n") << Kind::Playlist;
    QTest::newRow("m3u after a comment") << QByteArray("# My station\n#EXTM3U\n") << Kind::Playlist;
    QTest::newRow("commented lines") << QByteArray("# My station\nhttp://h/a b\n") << Kind::Playlist;
    QTest::newRow("bare lines") << QByteArray("http://h/a\n") << Kind::Playlist;
    QTest::newRow("bare lines in quotes") << QByteArray("\"http://h/a\"\n") << Kind::Playlist;
    QTest::newRow("relative lines") << QByteArray("\nhigh.mp3\n../live/low?a=b\n") << Kind::Playlist;
    QTest::newRow("cut within a line")
        << ("/a" + QByteArray(500, 'a') + "\nlow/a.mp3\n").first(Playlist::headBytes - 5) + "\nlow "
        << Kind::Playlist;
    QTest::newRow("asx") << QByteArray("<ASX version=\"3.0\">\n<Entry>") << Kind::Playlist;
    QTest::newRow("xspf") << QByteArray("<?xml version=\"1.0\"?>\n<!-- x -->\n<playlist version=\"1\">")
                          << Kind::Playlist;
    QTest::newRow("web page") << QByteArray("<!DOCTYPE html>") << Kind::Text;
    QTest::newRow("web page in XML") << QByteArray("<?xml version=\"1.0\"?><html><playlist>") << Kind::Text;
    QTest::newRow("message") << QByteArray("Closed for the night") << Kind::Text;
    QTest::newRow("message of a word") << QByteArray("Forbidden.\n") << Kind::Text;
    QTest::newRow("message with an address") << QByteArray("Moved to\nhttp://h/a\n") << Kind::Text;
    QTest::newRow("message for programs") << QByteArray("{\"error\":\"/a.b\"}") << Kind::Text;
    QTest::newRow("frame that begins like a page") << QByteArray("<\x00\xff\xfb", 4) << Kind::Media;
    QTest::newRow("frame that begins like a list") << QByteArray("#EXT\x01\x02") << Kind::Media;
    QTest::newRow("Ogg") << QByteArray("OggS\0\2", 6) << Kind::Media;
}

void TestPlaylist::kinds()
{
    QFETCH(QByteArray, head);
    QFETCH(Playlist::Kind, kind);
    QVERIFY(Playlist::kindOf(head) == kind);
}

void TestPlaylist::entries_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<QByteArrayList>("addresses");
    QTest::newRow("pls, by number")
        << QByteArray("\xef\xbb\xbf[playlist]\r\nFile10=http://h/c\r\nTitle1=http://no\r\nFilex=http://no\r\n"
                      "File2= http://h/b \r\nfile1=https://h/a\r\n")
        << QByteArrayList{"https://h/a", "http://h/b", "http://h/c"};
    QTest::newRow("pls, in quotes and relative")
        << QByteArray("Mine\n[playlist]\nFile1=\"http://h/a\"\nFile2='b'\nFile3=/c\nFile4=")
        << QByteArrayList{"http://h/a", "http://base/dir/b", "http://base/c"};
    QTest::newRow("reference") << QByteArray("[Reference]\r\nRef1=http://h/a?b=.asf\r\nRef2=b\r\n")
                               << QByteArrayList{"http://h/a?b=.asf", "http://base/dir/b"};
    QTest::newRow("other schemes") << QByteArray("[playlist]\nFile1=file:///etc/passwd\nFile2=memory://x\n"
                                                 "File3=edl://x\nFile5=http:///x\nFile6=http://h/")
                                   << QByteArrayList{"http://h/"};
    QTest::newRow("m3u")
        << QByteArray("#EXTM3U\n#EXTINF:-1,x\nhttp://h/a\n\n  rel/b\nfile:///x\n\"http://h/c\"\n//h/d\n")
        << QByteArrayList{"http://h/a", "http://base/dir/rel/b", "http://h/c", "http://h/d"};
    QTest::newRow("m3u with harmless tags")
        << QByteArray("#EXTM3U\n#EXT-X-VERSION:3\n#EXTINF:-1,x\nhttp://h/a\n#EXT-X-ENDLIST\n")
        << QByteArrayList{"http://h/a"};
    QTest::newRow("old line ends") << QByteArray("# x\rhttp://h/a\rhttp://h/b")
                                   << QByteArrayList{"http://h/a", "http://h/b"};
    QTest::newRow("asx")
        << QByteArray("<ASX version='3.0'><Title>x</Title>\n<!-- <ref href=\"http://no\"> -->"
                      "<ENTRY><REF\n HREF = \"http://h/a?b&amp;c&d\" /></entry>"
                      "<entry><ref class=\"href\" href='b'></entry><EntryRef href=\"http://h/c.asx\"/>"
                      "<refx href=\"http://no\"/><ref xhref=\"http://no\"/><ref href=\"http://no/></asx>")
        << QByteArrayList{"http://h/a?b&c&d", "http://base/dir/b", "http://h/c.asx"};
    QTest::newRow("xspf")
        << QByteArray("<?xml version=\"1.0\"?>\n<playlist version=\"1\"><location>http://no</location>"
                      "<trackList><track><location>\n http://h/a?b&amp;c </location><title>x</title></track>"
                      "<track><location>b</location></track><track><location>http://no")
        << QByteArrayList{"http://h/a?b&c", "http://base/dir/b"};
    QTest::newRow("what is escaped stays")
        << QByteArray("http://h/a%2Bb%25c%20%2Fd?e=%26%3D+f\nx/%252F%3f\n")
        << QByteArrayList{"http://h/a%2Bb%25c%20%2Fd?e=%26%3D+f", "http://base/dir/x/%252F%3F"};
    QTest::newRow("what may not stand there")
        << QByteArray("http://h/a b\xc3\xa9\"?c d\nhttp://h/100%\n")
        << QByteArrayList{"http://h/a%20b%C3%A9%22?c%20d", "http://h/100%25"};
    QTest::newRow("user info") << QByteArray("http://u:p%40@h/") << QByteArrayList{"http://u:p%40@h/"};
    QTest::newRow("segments") << QByteArray("#EXTM3U\n#EXT-X-TARGETDURATION:5\nhttp://h/1.ts")
                              << QByteArrayList{};
    QTest::newRow("none") << QByteArray("[playlist]\nnumberofentries=0") << QByteArrayList{};
    QByteArray many = "[playlist]\n";
    QByteArrayList first;
    for (int number = 1; number <= 1000; ++number) {
        const QByteArray address = "http://h/" + QByteArray::number(number);
        many += "File" + QByteArray::number(number) + "=" + address + "\n";
        if (number <= Playlist::maximumEntries) {
            first.append(address);
        }
    }
    QTest::newRow("too many") << many << first;
}

void TestPlaylist::entries()
{
    QFETCH(QByteArray, playlist);
    QByteArrayList addresses;
    for (const QUrl &entry : Playlist::entries(playlist, QUrl(u"http://base/dir/list.m3u"_s))) {
        addresses.append(entry.toEncoded());
    }
    QTEST(addresses, "addresses");
    QVERIFY(addresses.isEmpty() || Playlist::kindOf(QByteArrayView(playlist).first(std::min(
                                       playlist.size(), Playlist::headBytes))) == Playlist::Kind::Playlist);
}

void TestPlaylist::segments_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::addColumn<bool>("isSegmented");
    QTest::newRow("variants") << QByteArray("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\na.m3u8\n") << true;
    QTest::newRow("pieces") << QByteArray("\xef\xbb\xbf#EXTM3U\r\n#EXT-X-VERSION:3\r\n"
                                          "#EXT-X-TARGETDURATION:5\r\n#EXTINF:5,\r\n1.ts\r\n")
                            << true;
    QTest::newRow("encrypted pieces")
        << QByteArray("#EXTM3U\n#EXT-X-KEY:METHOD=AES-128\n#EXTINF:5,\n1\n") << true;
    QTest::newRow("harmless tags") << QByteArray("#EXTM3U\n#EXT-X-VERSION:3\nhttp://h/\n#EXT-X-ENDLIST\n")
                                   << false;
    QTest::newRow("within a line") << QByteArray("#EXTM3U\n#EXTINF:1,#EXT-X-KEY:\nhttp://h/\n") << false;
}

void TestPlaylist::segments()
{
    QFETCH(QByteArray, playlist);
    QTEST(Playlist::isSegmented(playlist), "isSegmented");
}

void TestPlaylist::hostileTextTakesNoTime_data()
{
    QTest::addColumn<QByteArray>("beginning");
    QTest::addColumn<QByteArray>("piece");
    QTest::newRow("tags that do not end") << QByteArray() << QByteArray("<ref ");
    QTest::newRow("comments that do not end") << QByteArray("<asx>") << QByteArray("<!--");
    QTest::newRow("values that do not end") << QByteArray("<ref x") << QByteArray(" href=\"'");
    QTest::newRow("entities") << QByteArray("<asx>") << QByteArray("<ref href='&amp;&amp;'>");
    QTest::newRow("lines") << QByteArray("[playlist]\n") << QByteArray("File1=\n\r");
}

void TestPlaylist::hostileTextTakesNoTime()
{
    QFETCH(QByteArray, beginning);
    QFETCH(QByteArray, piece);
    const QByteArray text = beginning + piece.repeated(256 * 1024 / piece.size()) + '>';
    QElapsedTimer timer;
    timer.start();
    Playlist::entries(text, QUrl(u"http://base/"_s));
    QCOMPARE_LT(timer.elapsed(), 2000);
}

QTEST_GUILESS_MAIN(TestPlaylist)
#include "tst_playlist.moc"
