#pragma once

#include <QString>

/// The strongest pitch, in Hz, of the last second or so of a 16-bit stereo WAV file that may still be
/// growing; 0 where the file is too short or holds silence.
double strongestPitch(const QString &wavFile);

/// Whether that pitch is `pitch`, give or take a quarter tone.
bool hasPitch(const QString &wavFile, double pitch);
