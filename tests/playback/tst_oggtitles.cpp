#include "playback/stream/oggtitles.h"

#include <QTest>
#include <QtEndian>
#include <algorithm>
#include <utility>

namespace {
using Titles = QList<std::pair<quint64, QByteArray>>;

constexpr char firstPage = 0x02;
const QByteArray vorbis = "\x01vorbis and more";
const QByteArray sound(600, 'O');

QByteArray number(quint32 value)
{
    QByteArray bytes(sizeof(value), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

/// A page with one packet, which goes on in the next one where its last segment is full.
QByteArray page(const QByteArray &body, char flags = 0, quint32 serial = 1, bool goesOn = false)
{
    QByteArray lengths(body.size() / 255, '\xff');
    if (!goesOn) {
        lengths += static_cast<char>(body.size() % 255);
    }
    return QByteArray("OggS") + '\0' + flags + QByteArray(8, '\0') + number(serial) + QByteArray(8, '\0') +
           static_cast<char>(lengths.size()) + lengths + body;
}

QByteArray comments(const QByteArrayList &texts)
{
    QByteArray bytes = number(4) + "test" + number(static_cast<quint32>(texts.size()));
    for (const QByteArray &text : texts) {
        bytes += number(static_cast<quint32>(text.size())) + text;
    }
    return bytes;
}

/// A whole link of Vorbis.
QByteArray link(const QByteArrayList &texts, quint32 serial = 1)
{
    return page(vorbis, firstPage, serial) + page("\x03vorbis" + comments(texts), 0, serial) +
           page(sound, 0, serial);
}
} // namespace

class TestOggTitles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titles_data();
    void titles();
};

void TestOggTitles::titles_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<Titles>("expected");

    const QByteArrayList both{"ARTIST=A", "TITLE=T"};
    const QByteArray first = link(both);
    const auto length = static_cast<quint64>(first.size());
    QTest::newRow("chain of Vorbis") << first + link({"title=U", "ALBUM=x"}, 2)
                                     << Titles{{0, "A - T"}, {length, "U"}};
    QTest::newRow("a link of no title takes the one before away")
        << first + link({"TITLE= "}) << Titles{{0, "A - T"}, {length, ""}};
    QTest::newRow("several artists") << link({"Artist=A", "artist=B", "TITLE"}) << Titles{{0, "A, B"}};
    QTest::newRow("Opus") << page("OpusHead....", firstPage) + page("OpusTags" + comments(both))
                          << Titles{{0, "A - T"}};
    for (const char type : {'\x04', '\x84'}) {
        QTest::addRow("FLAC, block %d", static_cast<unsigned char>(type))
            << page("\x7f\x46LAC....", firstPage) + page(type + QByteArray("\0\0\x10", 3) + comments(both))
            << Titles{{0, "A - T"}};
    }
    QTest::newRow("comments over two pages, and those of another stream between")
        << page(vorbis, firstPage) + page("OpusHead", firstPage, 2) + page("fishead", firstPage, 3) +
               page(("\x03vorbis" + comments({"ARTIST=" + QByteArray(600, 'a')})).first(510), 0, 1, true) +
               page("OpusTags" + comments({"TITLE=T"}), 0, 2) +
               page(("\x03vorbis" + comments({"ARTIST=" + QByteArray(600, 'a')})).mid(510))
        << Titles{{static_cast<quint64>(page(vorbis).size()), "T"}, {0, QByteArray(600, 'a')}};

    const QByteArray longest =
        "\x03vorbis" + comments({"TITLE=T", "PICTURE=" + QByteArray(80'000, 'p'), "ARTIST=A"});
    QTest::newRow("what stands behind a picture is not looked at")
        << page(vorbis, firstPage) + page(longest.first(255 * 255), 0, 1, true) + page(longest.mid(255 * 255))
        << Titles{{0, "T"}};
    QTest::newRow("longer than there is")
        << page(vorbis, firstPage) + page("\x03vorbis" + comments(both).chopped(1)) << Titles{{0, "A"}};
    QTest::newRow("lengths of all ones")
        << page(vorbis, firstPage) + page("\x03vorbis" + QByteArray(40, '\xff')) << Titles{{0, ""}};
    QTest::newRow("no comments") << page(vorbis, firstPage) + page(sound) << Titles{{0, ""}};

    const QByteArray rubbish = "OggOggS\1" + QByteArray(40, 'O') + "Ogg";
    QTest::newRow("rubbish between links")
        << first + rubbish + first
        << Titles{{0, "A - T"}, {length + static_cast<quint64>(rubbish.size()), "A - T"}};
    QTest::newRow("no Ogg at first") << "Og" + first << Titles{};

    QByteArray crowd;
    Titles ofCrowd;
    for (quint32 serial = 0; serial <= OggTitles::maximumWatched; ++serial) {
        if (serial > 0) {
            ofCrowd.append({static_cast<quint64>(crowd.size()), "T"});
        }
        crowd += page(vorbis, firstPage, serial);
    }
    for (quint32 serial = 0; serial <= OggTitles::maximumWatched; ++serial) {
        crowd += page("\x03vorbis" + comments({"TITLE=T"}), 0, serial);
    }
    QTest::newRow("too many side by side") << crowd << ofCrowd;
}

/// However the stream is cut.
void TestOggTitles::titles()
{
    QFETCH(QByteArray, stream);
    QFETCH(Titles, expected);
    for (const qsizetype piece : {stream.size(), qsizetype{1}, qsizetype{100}}) {
        OggTitles reader;
        Titles found;
        for (qsizetype at = 0; at < stream.size(); at += piece) {
            reader.read(QByteArrayView(stream).sliced(at, std::min(piece, stream.size() - at)),
                        [&found](quint64 position, const QByteArray &title) {
                            found.append({position, title});
                        });
        }
        QCOMPARE(found, expected);
    }
}

QTEST_MAIN(TestOggTitles)
#include "tst_oggtitles.moc"
