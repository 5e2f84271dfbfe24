#pragma once

#include <mpv/client.h>

class MpvHandle;

/// Lets one core keep its output open when the format changes within a stream, as it does between the pieces
/// of chained Ogg and around advertisements; opening another output cuts what is queued and leaves a gap. A
/// first format that is less than a station's usual is not kept: all that follows would be brought down to
/// it. Main thread.
class FormatKeeper
{
public:
    /// `handle` must outlive this object.
    explicit FormatKeeper(MpvHandle &handle);

    /// The format of the output: "audio-out-params"; null where none is open.
    void outputChanged(const mpv_node *format);
    /// Nothing more will come of the stream. From here on the core waits for what the output has queued
    /// before it reports the end, which it does not do while it keeps the output.
    void streamEnded();

private:
    void keep(bool kept);

    MpvHandle &handle_;
    bool isKept_ = false;
    bool hasEnded_ = false;
};
