#include "playback/stream/hls/hlswindow.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {
/// How far before its end a stream that goes on is joined, in target durations.
constexpr int joiningDurations = 3;
/// After how many playlists with nothing but old numbers these are taken for new ones: some servers begin to
/// count anew, or do not count at all. A single one may just be old.
constexpr int updatesUntilAnew = 3;
} // namespace

bool HlsWindow::update(const HlsPlaylist &playlist)
{
    const bool hasChanged = playlist_.segments.isEmpty() || playlist.segments.isEmpty() ||
                            playlist_.segments.constLast().url != playlist.segments.constLast().url;
    playlist_ = playlist;
    const auto &segments = playlist_.segments;
    if (!nextNumber_ || (hasChanged && isBegunAnew())) {
        join();
    } else {
        index_ = std::find_if(segments.cbegin(), segments.cend(),
                              [this](const HlsSegment &segment) { return segment.number >= *nextNumber_; }) -
                 segments.cbegin();
    }
    const bool hasNews = next() != nullptr;
    updatesWithoutNews_ = hasNews ? 0 : updatesWithoutNews_ + 1;
    return hasNews;
}

bool HlsWindow::isBegunAnew() const
{
    const auto &segments = playlist_.segments;
    if (segments.isEmpty() || segments.constLast().number >= *nextNumber_) {
        return false;
    }
    const quint64 behind = *nextNumber_ - segments.constLast().number;
    return behind > static_cast<quint64>(segments.size()) + 1 || updatesWithoutNews_ + 1 >= updatesUntilAnew;
}

void HlsWindow::join()
{
    const auto &segments = playlist_.segments;
    index_ = 0;
    if (!playlist_.isComplete) {
        index_ = segments.size();
        for (auto left = 0ms; index_ > 0 && left < joiningDurations * playlist_.targetDuration; --index_) {
            left += segments.at(index_ - 1).duration;
        }
    }
    if (index_ < segments.size()) {
        nextNumber_ = segments.at(index_).number;
    }
}

const HlsSegment *HlsWindow::next() const
{
    return index_ < playlist_.segments.size() ? &playlist_.segments.at(index_) : nullptr;
}

void HlsWindow::advance()
{
    nextNumber_ = playlist_.segments.at(index_).number + 1;
    ++index_;
}

std::chrono::milliseconds HlsWindow::reloadTime() const
{
    return updatesWithoutNews_ == 0 ? playlist_.targetDuration : playlist_.targetDuration / 2;
}
