#pragma once

#include <QByteArray>
#include <chrono>

/// The desktop session's message bus, before anybody connects to it. The library that speaks its language
/// waits for answers without end, and the toolkit connects while it starts: a bus that hangs would hang the
/// program.
namespace SessionBus {
/// Where the bus is, as D-Bus writes addresses; empty where there is none. Never starts one.
QByteArray address();

/// Whether somebody at `address` speaks to us before the time is over. Buses that cannot be tried, as those
/// that are not reached by a socket of this machine, count as answering.
bool answers(const QByteArray &address, std::chrono::milliseconds patience);

/// Makes this process, its libraries included, do without a bus. Before anybody has connected to it.
void forgo();
} // namespace SessionBus
