#include "localradio/catalogue/builtincatalogue.h"
#include "localradio/catalogue/jsoncatalogue.h"
#include "localradio/faults/answerfaults.h"
#include "localradio/faults/faultcatalogue.h"
#include "localradio/faults/faulthelp.h"
#include "localradio/http/basiclock.h"
#include "localradio/http/httpserver.h"
#include "localradio/http/requestlog.h"
#include "localradio/http/tlsserver.h"
#include "localradio/services/directoryservice.h"
#include "localradio/services/doorkeeper.h"
#include "localradio/services/faultservice.h"
#include "localradio/services/hlsservice.h"
#include "localradio/services/kindlist.h"
#include "localradio/services/streammounts.h"
#include "localradio/services/tunnel.h"
#include "localradio/sound/soundlibrary.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>

using namespace localradio;

namespace {

constexpr char description[] = R"(A radio directory and its live streams on this machine alone: what a
radio player needs to be shown, tried and measured without a network.

It listens on 127.0.0.1 and says on its first line of output where. Clients
send the developer key as "k"; "limit" is N for the first N stations, or X,Y
for Y stations after skipping X.

  /legacy/Top500/?k=KEY[&limit=N]                 by number of listeners
  /legacy/stationsearch?k=KEY&search=TEXT         all words in name, genre, track
  /station/randomstations?k=KEY&f=xml             a handful picked at random
  /sbin/tunein-station.pls?id=ID                  also .m3u and .xspf
  /stream/ID                                      live MP3, AAC or Ogg Vorbis
  /private/ID                                     the same, for one user only
  /kind/NAME                                      one stream of every kind
  /hls/master.m3u8, /hls/VARIANT.m3u8             the same as HLS; variants are
                                                  low, mid, high and video
  /private/kind/NAME, /private/hls/...            for one user only

A second port, on the second line of output, serves the same, and where there is
a certificate an encrypted one, on the third. To learn how the
streams are made to go wrong, see --help-faults.

The built-in stations are invented, the same ones in every run. Each plays a
soft tone of its own; --list tells the pitch, and --list-kinds that of every
kind and of HLS of every shape.

To run a small directory of your own, write the stations into a JSON file and
start with --catalogue FILE. It is an array with one object a station:

  [
    {"name": "Kitchen Radio", "genre": "Jazz, Lounge",
     "url": "http://radio.example:8000/kitchen.mp3"},
    {"id": 42, "name": "Two Roads", "genre": "Folk", "mt": "audio/aacp",
     "br": 64, "lc": 120, "ct": "Artist - Title",
     "url": ["http://a.example/live", "https://b.example/live"]}
  ]

Each station needs "name" and "url", an http or https address or several of
them, to which clients tune in directly. "genre" may name several, "mt" is the
media type (audio/mpeg if left out), "br" the bit rate in kbit/s, "lc" the
number of listeners, "ct" the current track, "logo" a picture's address and
"id" a number of your choice.)";

/// What the command line asks for.
struct Options
{
    quint16 port = 0;
    quint16 secondPort = 0;
    quint16 tlsPort = 0;
    QString certificate;
    QString certificateKey;
    double tlsHoldSeconds = 0;
    QByteArray user;
    QByteArray password;
    QString key;
    QString log;
    QString catalogue;
    QString loops;
    double burstSeconds = 0;
    bool list = false;
    bool listKinds = false;
    bool faults = false;
};

/// Reads the command line; help, version and unknown options end the program here. Throws
/// std::runtime_error for a value that makes no sense.
Options readOptions(const QCoreApplication &application)
{
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("Port to listen on; 0 picks a free one."),
                                  QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption secondPort(QStringLiteral("second-port"),
                                        QStringLiteral("Second port; 0 picks a free one."),
                                        QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption tlsPort(QStringLiteral("tls-port"),
                                     QStringLiteral("Encrypted port; 0 picks a free one."),
                                     QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption certificate(
        QStringLiteral("tls-certificate"),
        QStringLiteral("Its certificate, a PEM file; there is no encrypted port without one."),
        QStringLiteral("FILE"));
    const QCommandLineOption certificateKey(QStringLiteral("tls-key"),
                                            QStringLiteral("The certificate's RSA or EC key, likewise."),
                                            QStringLiteral("FILE"));
    const QCommandLineOption tlsHold(
        QStringLiteral("tls-hold"),
        QStringLiteral("The first encrypted connection waits so long for its handshake, 0 to 600."),
        QStringLiteral("SECONDS"), QStringLiteral("0"));
    const QCommandLineOption user(QStringLiteral("user"), QStringLiteral("User who may hear /private/ID."),
                                  QStringLiteral("NAME"), QStringLiteral("listener"));
    const QCommandLineOption password(QStringLiteral("password"), QStringLiteral("The user's password."),
                                      QStringLiteral("TEXT"), QStringLiteral("open sesame"));
    const QCommandLineOption key(QStringLiteral("key"),
                                 QStringLiteral("Developer key that clients must send."),
                                 QStringLiteral("KEY"), QStringLiteral("Rk4TnW8pLq2ZbX7m"));
    const QCommandLineOption log(QStringLiteral("log"),
                                 QStringLiteral("Log requests, answers, ends of streams and outages, one "
                                                "JSON object a line; - is standard output."),
                                 QStringLiteral("FILE"));
    const QCommandLineOption catalogue(
        QStringLiteral("catalogue"),
        QStringLiteral("List the stations of this JSON file, not the built-in ones."),
        QStringLiteral("FILE"));
    const QCommandLineOption loops(QStringLiteral("loops"),
                                   QStringLiteral("Where the loops are that the built-in stations play."),
                                   QStringLiteral("DIR"), SoundLibrary::defaultDirectory());
    const QCommandLineOption burst(QStringLiteral("burst"),
                                   QStringLiteral("Audio that a new listener gets at once, 0 to 600."),
                                   QStringLiteral("SECONDS"), QStringLiteral("16"));
    const QCommandLineOption list(QStringLiteral("list"),
                                  QStringLiteral("Print the catalogue as JSON, pitches in Hz, and end."));
    const QCommandLineOption listKinds(
        QStringLiteral("list-kinds"),
        QStringLiteral("Print every kind of sound that is served, likewise, and end."));

    const QCommandLineOption faults(QStringLiteral("faults"),
                                    QStringLiteral("Add stations, and searches, at which "
                                                   "something goes wrong."));
    const QCommandLineOption helpFaults(
        QStringLiteral("help-faults"),
        QStringLiteral("Tell what can be made to go wrong, and how, and end."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(description));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({port, secondPort, tlsPort, certificate, certificateKey, tlsHold, key, log, catalogue,
                       loops, burst, user, password, list, listKinds, faults, helpFaults});
    parser.process(application);
    if (parser.isSet(helpFaults)) {
        std::fputs(faultHelp, stdout);
        std::exit(0);
    }

    bool portValid = false;
    bool secondPortValid = false;
    bool tlsPortValid = false;
    bool tlsHoldValid = false;
    bool burstValid = false;
    Options options{parser.value(port).toUShort(&portValid),
                    parser.value(secondPort).toUShort(&secondPortValid),
                    parser.value(tlsPort).toUShort(&tlsPortValid),
                    parser.value(certificate),
                    parser.value(certificateKey),
                    parser.value(tlsHold).toDouble(&tlsHoldValid),
                    parser.value(user).toUtf8(),
                    parser.value(password).toUtf8(),
                    parser.value(key),
                    parser.value(log),
                    parser.value(catalogue),
                    parser.value(loops),
                    parser.value(burst).toDouble(&burstValid),
                    parser.isSet(list),
                    parser.isSet(listKinds),
                    parser.isSet(faults)};
    if (!portValid || !secondPortValid || !tlsPortValid) {
        throw std::runtime_error("--port, --second-port and --tls-port must be numbers from 0 to 65535");
    }
    if (options.user.contains(':')) {
        throw std::runtime_error("--user must not contain a colon");
    }
    if (!burstValid || !(options.burstSeconds >= 0 && options.burstSeconds <= 600)) {
        throw std::runtime_error("--burst must be a number from 0 to 600");
    }
    if (!tlsHoldValid || !(options.tlsHoldSeconds >= 0 && options.tlsHoldSeconds <= 600)) {
        throw std::runtime_error("--tls-hold must be a number from 0 to 600");
    }
    if (!parser.positionalArguments().isEmpty()) {
        throw std::runtime_error("unexpected argument: " +
                                 parser.positionalArguments().first().toStdString());
    }
    return options;
}

std::unique_ptr<Catalogue> openCatalogue(const QString &fileName)
{
    if (fileName.isEmpty()) {
        return std::make_unique<BuiltinCatalogue>();
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error(fileName.toStdString() + ": " + file.errorString().toStdString());
    }
    try {
        return std::make_unique<JsonCatalogue>(file.readAll());
    } catch (const std::runtime_error &error) {
        throw std::runtime_error(fileName.toStdString() + ": " + error.what());
    }
}

void listen(HttpServer &server, quint16 port)
{
    if (!server.listen(port)) {
        throw std::runtime_error("cannot listen on port " + std::to_string(port) + ": " +
                                 server.errorString().toStdString());
    }
}

int run(const QCoreApplication &application)
{
    const Options options = readOptions(application);
    auto catalogue = openCatalogue(options.catalogue);
    if (options.faults) {
        catalogue = std::make_unique<FaultCatalogue>(*catalogue);
    }
    if (options.list) {
        std::fputs(catalogue->toJson().constData(), stdout);
        return 0;
    }

    if (options.listKinds) {
        std::fputs(kindList().constData(), stdout);
        return 0;
    }

    RequestLog log;
    if (!options.log.isEmpty() && !log.open(options.log)) {
        throw std::runtime_error("cannot write the log: " + log.errorString().toStdString());
    }
    RequestLog *const logOrNone = options.log.isEmpty() ? nullptr : &log;
    HttpServer server(logOrNone);
    HttpServer secondServer(logOrNone);
    listen(server, options.port);
    listen(secondServer, options.secondPort);
    std::optional<HttpServer> tlsServer;
    if (!options.certificate.isEmpty()) {
        const auto hold = std::chrono::milliseconds(std::lround(options.tlsHoldSeconds * 1000));
        tlsServer.emplace(logOrNone,
                          std::make_unique<TlsServer>(options.certificate, options.certificateKey, hold));
        listen(*tlsServer, options.tlsPort);
    }
    const DirectoryService directory(*catalogue, options.key, server.origin());
    const Ports ports{server.port(), secondServer.port(), tlsServer ? tlsServer->port() : quint16{0}};
    SoundLibrary library(options.loops);
    StreamMounts mounts(*catalogue, library, options.burstSeconds, ports);
    HlsService hls(library, ports);
    FaultService faults(server);
    std::optional<AnswerFaults> answerFaults;
    if (options.faults) {
        answerFaults.emplace(catalogue->stations().front().id, ports);
    }
    Doorkeeper doorkeeper;
    const BasicLock lock(options.user, options.password);
    const auto handler = [&](HttpConnection &connection) {
        if (Tunnel::serve(connection, ports)) {
            return;
        }
        const RequestTarget target(connection.request().target);
        if (target.path().startsWith(StreamMounts::privatePrefix) && !lock.opensFor(connection.request())) {
            connection.answer(BasicLock::challenge());
        } else if (!doorkeeper.stops(connection, target) &&
                   !(answerFaults && answerFaults->serve(connection, target)) &&
                   !mounts.serve(connection, target) && !hls.serve(connection, target) &&
                   !faults.serve(connection, target)) {
            connection.answer(directory.answer(target));
        }
    };
    server.setHandler(handler);
    secondServer.setHandler(handler);
    if (tlsServer) {
        tlsServer->setHandler(handler);
    }

    std::printf("localradio: listening on %s/\n", qUtf8Printable(server.origin()));
    std::printf("localradio: second port on %s/\n", qUtf8Printable(secondServer.origin()));
    if (tlsServer) {
        std::printf("localradio: encrypted port on %s/\n", qUtf8Printable(tlsServer->origin()));
    }
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("localradio"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.0"));
    try {
        return run(application);
    } catch (const std::runtime_error &error) {
        std::fprintf(stderr, "localradio: %s\n", error.what());
        return 1;
    }
}
