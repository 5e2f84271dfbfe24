#pragma once

#include <QString>

namespace localradio {

/// The address of what listens on `port` of this machine: "http://127.0.0.1:PORT", or
/// "https://localhost:PORT", as certificates bear names.
inline QString originOf(quint16 port, bool encrypted = false)
{
    return (encrypted ? QStringLiteral("https://localhost:%1") : QStringLiteral("http://127.0.0.1:%1"))
        .arg(port);
}

/// The ports that serve the same; 0 where there is none.
struct Ports
{
    quint16 main = 0;
    quint16 second = 0;
    quint16 encrypted = 0;

    /// The one of the two that `port` is not.
    quint16 otherThan(quint16 port) const { return port == second ? main : second; }
};

} // namespace localradio
