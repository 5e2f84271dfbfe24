#pragma once

#include <QString>
#include <vector>

/// The strongest pitch, in Hz, of the last third of a second or so of a 16-bit stereo WAV file that may still
/// be growing; 0 where the file is too short or holds silence.
double strongestPitch(const QString &wavFile);

/// Whether that pitch is `pitch`, give or take a quarter tone.
bool hasPitch(const QString &wavFile, double pitch);

/// The energy of `samples`, which are 44,100 a second, at `frequency` Hz.
double energyAt(const std::vector<double> &samples, double frequency);
