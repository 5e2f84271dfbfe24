#pragma once

#include "directory/keyed/stationdirectory.h"
#include "playback/mpv/audiooutput.h"
#include "playback/mpv/mpvconditions.h"

#include <QProcessEnvironment>
#include <variant>

/// What the environment sets, for people who run their own directory and for tests:
/// PLUMTIDE_DIRECTORY_URL and PLUMTIDE_TUNEIN_URL (http or https addresses), PLUMTIDE_DIRECTORY_KEY,
/// PLUMTIDE_AUDIO_OUTPUT ("null", or "pcm:FILE" for a WAV file), PLUMTIDE_PAUSE_BUFFER (KiB). A variable that
/// is unset or empty keeps the default.
struct Environment
{
    DirectoryService directory;
    AudioOutput audioOutput = AudioOutput::automatic();
    /// How much a paused station may load until the buffer counts as full.
    qint64 pausedBufferBytes = MpvConditions::usualPausedBufferBytes;

    /// The settings, or one line that says which variable cannot be used and why.
    static std::variant<Environment, QString> from(const QProcessEnvironment &variables);
};
