#pragma once

/// How far the radio is with what it was last asked to play.
enum class PlaybackState {
    /// Nothing has been asked for, or it has been ended.
    Stopped,
    Connecting,
    /// There is sound, but not enough yet to be sure of more.
    Buffering,
    Playing,
    /// Goes on loading in the background, from whichever of the three it has reached.
    Paused,
    /// It could not be played, or its connection has been lost for good.
    Failed,
};
