#pragma once

#include <QByteArrayView>
#include <QtGlobal>
#include <mpv/client.h>
#include <vector>

/// What stands under `key` in `map`, which need not be one; null where nothing does.
const mpv_node *nodeAt(const mpv_node &map, const char *key);
/// The same as a number, a flag or a text: 0, false or empty where there is none of that kind.
double secondsAt(const mpv_node &map, const char *key);
qint64 numberAt(const mpv_node &map, const char *key);
bool flagAt(const mpv_node &map, const char *key);
QByteArrayView textAt(const mpv_node &map, const char *key);

/// A map that is put together for libmpv. A key may stand in it more than once.
class NodeMap
{
public:
    /// Keys, texts and maps must outlive this map.
    void add(const char *key, const char *text);
    void add(const char *key, NodeMap &map);

    /// Shares what this map has; valid until the next add().
    mpv_node node();

private:
    std::vector<char *> keys_;
    std::vector<mpv_node> values_;
    mpv_node_list list_{};
};
