#include "playback/mpv/mpvnode.h"

const mpv_node *nodeAt(const mpv_node &map, const char *key)
{
    if (map.format == MPV_FORMAT_NODE_MAP) {
        for (int index = 0; index < map.u.list->num; ++index) {
            // A stream's own tags come in capitals or not.
            if (qstricmp(map.u.list->keys[index], key) == 0) {
                return &map.u.list->values[index];
            }
        }
    }
    return nullptr;
}

double secondsAt(const mpv_node &map, const char *key)
{
    const mpv_node *node = nodeAt(map, key);
    return node != nullptr && node->format == MPV_FORMAT_DOUBLE ? node->u.double_ : 0;
}

qint64 numberAt(const mpv_node &map, const char *key)
{
    const mpv_node *node = nodeAt(map, key);
    return node != nullptr && node->format == MPV_FORMAT_INT64 ? node->u.int64 : 0;
}

bool flagAt(const mpv_node &map, const char *key)
{
    const mpv_node *node = nodeAt(map, key);
    return node != nullptr && node->format == MPV_FORMAT_FLAG && node->u.flag != 0;
}

QByteArrayView textAt(const mpv_node &map, const char *key)
{
    const mpv_node *node = nodeAt(map, key);
    return node != nullptr && node->format == MPV_FORMAT_STRING ? QByteArrayView(node->u.string)
                                                                : QByteArrayView();
}

// libmpv only reads what it is handed, though its nodes do not say so.

void NodeMap::add(const char *key, const char *text)
{
    mpv_node value{};
    value.format = MPV_FORMAT_STRING;
    value.u.string = const_cast<char *>(text);
    keys_.push_back(const_cast<char *>(key));
    values_.push_back(value);
}

void NodeMap::add(const char *key, NodeMap &map)
{
    keys_.push_back(const_cast<char *>(key));
    values_.push_back(map.node());
}

mpv_node NodeMap::node()
{
    list_ = {static_cast<int>(values_.size()), values_.data(), keys_.data()};
    mpv_node node{};
    node.format = MPV_FORMAT_NODE_MAP;
    node.u.list = &list_;
    return node;
}
