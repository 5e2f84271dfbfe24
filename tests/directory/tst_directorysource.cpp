#include "directory/keyed/stationdirectory.h"
#include "directory/keyed/tuneinaddress.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
/// A kind of directory before a scripted service, which the contract is checked with.
class DirectoryUnderTest
{
public:
    enum class Request { Top, Search, Genre, Random };
    static constexpr QLatin1StringView searchText{"Smooth & easy"};
    static constexpr QLatin1StringView genreName{"Hip Hop"};

    virtual ~DirectoryUnderTest() = default;
    virtual DirectorySource &source() = 0;
    /// From now on the service has stations of these names for `request`, which is asked with the text above.
    virtual void serve(Request request, const QStringList &names) = 0;
    /// From now on the service answers with something that is no list of stations.
    virtual void serveNonsense() = 0;

    void ask(Request request)
    {
        switch (request) {
        case Request::Top:
            source().requestTopStations();
            break;
        case Request::Search:
            source().requestSearch(searchText);
            break;
        case Request::Genre:
            source().requestGenre(genreName);
            break;
        case Request::Random:
            source().requestRandomStations();
            break;
        }
    }

    ScriptedServer server;
};

class KeyedDirectory : public DirectoryUnderTest
{
public:
    KeyedDirectory()
        : directory_({.baseAddress = server.address(u"/"_s), .tuneInBaseAddress = u"http://tune.example"_s},
                     [] { return QString(); })
    {
    }

    DirectorySource &source() override { return directory_; }

    void serve(Request request, const QStringList &names) override
    {
        QByteArray answer = "<stationlist><tunein base='/tune'/>";
        for (const QString &name : names) {
            answer += "<station name='" + name.toUtf8() + "' id='" + name.toUtf8() + "'/>";
        }
        server.scriptBody(pathOf(request), answer + "</stationlist>");
    }

    void serveNonsense() override
    {
        for (const Request request : {Request::Top, Request::Search, Request::Random}) {
            server.scriptBody(pathOf(request), "<stationlist><station name='half'");
        }
    }

private:
    static QByteArray pathOf(Request request)
    {
        switch (request) {
        case Request::Top:
            return "/legacy/Top500/";
        case Request::Random:
            return "/station/randomstations";
        case Request::Search:
        case Request::Genre:
            break;
        }
        return "/legacy/stationsearch";
    }

    StationDirectory directory_;
};

QStringList namesIn(const DirectoryAnswer &answer)
{
    QStringList names;
    for (const StationEntry &station : answer.stations) {
        names.append(station.text("name"_L1));
    }
    return names;
}

using MakeDirectory = std::function<std::unique_ptr<DirectoryUnderTest>()>;
} // namespace

/// What whoever asks a directory may rely on, whichever kind it is.
class TestDirectorySource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void requestsAreAnswered_data();
    void requestsAreAnswered();
    void lastAnswerCounts();
    void failuresLeaveNoStations();
    void tuneInAddresses();
};

void TestDirectorySource::initTestCase_data()
{
    QTest::addColumn<MakeDirectory>("make");
    QTest::newRow("keyed") << MakeDirectory([] { return std::make_unique<KeyedDirectory>(); });
}

void TestDirectorySource::requestsAreAnswered_data()
{
    QTest::addColumn<DirectoryUnderTest::Request>("request");
    QTest::newRow("top") << DirectoryUnderTest::Request::Top;
    QTest::newRow("search") << DirectoryUnderTest::Request::Search;
    QTest::newRow("genre") << DirectoryUnderTest::Request::Genre;
    QTest::newRow("random") << DirectoryUnderTest::Request::Random;
}

void TestDirectorySource::requestsAreAnswered()
{
    QFETCH_GLOBAL(MakeDirectory, make);
    QFETCH(DirectoryUnderTest::Request, request);
    const auto directory = make();
    DirectorySource &source = directory->source();
    QCOMPARE(source.answer().outcome, DirectoryAnswer::Outcome::Awaited);

    QList<bool> busy;
    QSignalSpy answered(&source, &DirectorySource::answered);
    QSignalSpy texts(&source, &DirectorySource::statusChanged);
    connect(&source, &DirectorySource::busyChanged, this, [&](bool now) {
        // No list is shown while its successor is on the way, nor a busy directory once it has arrived.
        QVERIFY(now || answered.size() == busy.count(false));
        busy.append(now);
    });
    directory->serve(request, {u"One"_s, u"Two"_s});
    directory->ask(request);
    QCOMPARE(busy, QList<bool>{true});
    QVERIFY(answered.isEmpty() && !texts.isEmpty());

    QTRY_VERIFY(!answered.isEmpty());
    const DirectoryAnswer answer = source.answer();
    QCOMPARE(answer.outcome, DirectoryAnswer::Outcome::Read);
    QCOMPARE(namesIn(answer), (QStringList{u"One"_s, u"Two"_s}));
    QVERIFY(!answer.age);
    for (const StationEntry &station : answer.stations) {
        QVERIFY(QUrl(source.playAddress(station), QUrl::StrictMode).isValid());
        QVERIFY(!source.favouriteAddress(station).isEmpty());
    }
}

void TestDirectorySource::lastAnswerCounts()
{
    QFETCH_GLOBAL(MakeDirectory, make);
    const auto directory = make();
    directory->serve(DirectoryUnderTest::Request::Top, {u"Top"_s});
    directory->serve(DirectoryUnderTest::Request::Search, {});
    directory->ask(DirectoryUnderTest::Request::Top);
    QTRY_COMPARE(namesIn(directory->source().answer()), QStringList{u"Top"_s});
    // A search that finds nothing is an answer like any other.
    directory->ask(DirectoryUnderTest::Request::Search);
    QTRY_COMPARE(namesIn(directory->source().answer()), QStringList());
    QCOMPARE(directory->source().answer().outcome, DirectoryAnswer::Outcome::Read);
}

void TestDirectorySource::failuresLeaveNoStations()
{
    QFETCH_GLOBAL(MakeDirectory, make);
    const auto directory = make();
    const auto outcome = [&] { return directory->source().answer().outcome; };
    directory->serve(DirectoryUnderTest::Request::Top, {u"Top"_s});
    directory->ask(DirectoryUnderTest::Request::Top);
    QTRY_COMPARE(outcome(), DirectoryAnswer::Outcome::Read);

    directory->serveNonsense();
    directory->ask(DirectoryUnderTest::Request::Top);
    QTRY_COMPARE(outcome(), DirectoryAnswer::Outcome::Unusable);
    QVERIFY(directory->source().answer().stations.isEmpty());

    directory->server.close();
    QSignalSpy answered(&directory->source(), &DirectorySource::answered);
    directory->ask(DirectoryUnderTest::Request::Random);
    QTRY_COMPARE(outcome(), DirectoryAnswer::Outcome::NoAnswer);
    QVERIFY(directory->source().answer().stations.isEmpty() && !answered.isEmpty());
}

void TestDirectorySource::tuneInAddresses()
{
    const StationEntry station(AttributeMap(QByteArray("name\0id\0", 8), QByteArray("A\0"
                                                                                    "42\0",
                                                                                    5)));
    const AttributeMap based(QByteArray("base\0", 5), QByteArray("/tune.pls\0", 10));
    const AttributeMap baseless(QByteArray("other\0", 6), QByteArray("x\0", 2));
    QVERIFY(tuneInAddress(u"http://h"_s, {}, station).isNull());
    QCOMPARE(tuneInAddress(u"http://h"_s, {baseless, based}, station), u"http://h/tune.pls?id=42"_s);
    QCOMPARE(tuneInAddress(u"http://h"_s, {based, baseless}, station), u"http://h?id=42"_s);
}

QTEST_GUILESS_MAIN(TestDirectorySource)
#include "tst_directorysource.moc"
