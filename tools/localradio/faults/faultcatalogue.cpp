#include "localradio/faults/faultcatalogue.h"

#include "localradio/sound/loops.h"

#include <array>

namespace localradio {

namespace {

struct Fault
{
    const char *name;
    const char *streams; ///< with blanks between; %1 is the station's id
};

// 20 s of audio at 128 kbit/s are 320000 bytes, of which a new listener has most at once.
constexpr std::array faults{
    Fault{"closes after 20 s", "/stream/%1?close-after=320000"},
    Fault{"resets after 20 s", "/stream/%1?reset-after=320000"},
    Fault{"falls silent after 20 s", "/stream/%1?stall-after=320000"},
    Fault{"silent from the start", "/stream/%1?stall-after=0"},
    Fault{"half the speed it needs", "/stream/%1?rate=8000"},
    Fault{"faster than it plays", "/stream/%1?body=endless"},
    Fault{"not found", "/stream/%1?status=404"},
    Fault{"service unavailable", "/stream/%1?status=503"},
    Fault{"asks for a password", "/private/%1"},
    Fault{"nobody listens", "/refused"},
    Fault{"only the third address plays", "/refused /stream/%1?status=404 /stream/%1"},
    Fault{"redirects to another port", "/stream/%1?redirect=port"},
    Fault{"redirects in a circle", "/stream/%1?redirect=loop"},
    Fault{"redirects to a file", "/stream/%1?redirect=file"},
    Fault{"playlist names itself", "/playlist?itself=1"},
    Fault{"playlist never ends", "/playlist?endless=1"},
    Fault{"a web page", "/stream/%1?body=html"},
    Fault{"random bytes", "/stream/%1?body=random"},
    Fault{"zeros", "/stream/%1?body=zeros"},
    Fault{"titles not where announced", "/stream/%1?icy=bad-metaint"},
    Fault{"titles without an end", "/stream/%1?icy=unterminated"},
    Fault{"titles in Latin-1", "/stream/%1?icy=latin1"},
    Fault{"titles of 4000 letters", "/stream/%1?icy=long"},
    Fault{"a flood of titles", "/stream/%1?icy=flood"},
};

} // namespace

FaultCatalogue::FaultCatalogue(const Catalogue &other)
    : stations_(other.stations())
{
    int id = 2'000'000;
    for (const Fault &fault : faults) {
        do {
            ++id;
        } while (other.find(id) != nullptr);
        Station station;
        station.id = id;
        station.name = QStringLiteral("Fault: ") + QLatin1StringView(fault.name);
        station.genres = {QStringLiteral("Faults")};
        station.mediaType = QLatin1StringView(factsOf(Format::Mp3).mediaType);
        station.bitrate = factsOf(Format::Mp3).bitrate;
        station.streams = QString::fromLatin1(fault.streams)
                              .replace(QLatin1StringView("%1"), QString::number(id))
                              .split(u' ');
        station.mount =
            Mount{0, {QStringLiteral("The Faults - First"), QStringLiteral("The Faults - Second")}};
        stations_.push_back(std::move(station));
    }
}

} // namespace localradio
