#include "playback/mpv/cachestate.h"

#include "playback/backend.h"
#include "playback/mpv/mpvnode.h"

namespace {
void appendRange(CacheState &state, double start, double end)
{
    state.ranges.append(QVariant::fromValue(BackendItem::TimeRange{start, end}));
    state.end = end;
}
} // namespace

CacheState CacheState::from(const mpv_node &node)
{
    CacheState state;
    state.reader = secondsAt(node, "reader-pts");
    state.bytesAhead = numberAt(node, "fw-bytes");
    state.loadingRests = flagAt(node, "idle") && !flagAt(node, "eof");
    state.underrun = flagAt(node, "underrun");
    if (const mpv_node *ranges = nodeAt(node, "seekable-ranges");
        ranges != nullptr && ranges->format == MPV_FORMAT_NODE_ARRAY) {
        for (int index = 0; index < ranges->u.list->num; ++index) {
            const mpv_node &range = ranges->u.list->values[index];
            appendRange(state, secondsAt(range, "start"), secondsAt(range, "end"));
        }
    }
    if (state.ranges.isEmpty() && nodeAt(node, "cache-end") != nullptr) {
        // All that was loaded has been played already, as with an output that is faster than the stream.
        appendRange(state, secondsAt(node, "reader-pts"), secondsAt(node, "cache-end"));
    }
    return state;
}
