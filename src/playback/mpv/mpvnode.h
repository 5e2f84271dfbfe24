#pragma once

#include <QByteArrayView>
#include <QtGlobal>
#include <mpv/client.h>

/// What stands under `key` in `map`, which need not be one; null where nothing does.
const mpv_node *nodeAt(const mpv_node &map, const char *key);
/// The same as a number, a flag or a text: 0, false or empty where there is none of that kind.
double secondsAt(const mpv_node &map, const char *key);
qint64 numberAt(const mpv_node &map, const char *key);
bool flagAt(const mpv_node &map, const char *key);
QByteArrayView textAt(const mpv_node &map, const char *key);
