#pragma once

#include <QByteArray>

namespace localradio {

/// Every kind of sound and of HLS that is served, as a JSON array: "name", "path", "mt" and "pitch" in Hz; of
/// chains "titles" in their order; of HLS whose sound ends "seconds".
QByteArray kindList();

} // namespace localradio
