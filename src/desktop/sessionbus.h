#pragma once

#include <QByteArray>
#include <chrono>

/// The session bus, before anything connects to it. libdbus waits for answers without a limit, and Qt
/// connects while it starts: a bus that hangs would hang the program.
namespace SessionBus {
/// Where the bus is, as D-Bus writes addresses; empty where there is none. Never starts one.
QByteArray address();

/// Whether a bus at `address` answers before the time is over. A bus that cannot be probed, because its
/// address is no Unix socket, counts as answering.
bool answers(const QByteArray &address, std::chrono::milliseconds patience);

/// Makes this process, its libraries included, do without a bus. Call before anything has connected to it.
void disable();
} // namespace SessionBus
