#pragma once

#include <QByteArray>
#include <QTimer>

class MpvHandle;

/// Brings one core back to the sound server when it plays unheard because none answered, or because the one
/// that did has gone. Main thread.
class OutputRetry
{
public:
    /// `nullIsFallback`: whether the null output stands in for a sound server. The handle must outlive this
    /// object.
    OutputRetry(MpvHandle &handle, bool nullIsFallback);

    /// The core has opened the output of that name.
    void outputOpened(const QByteArray &name);

private:
    const bool nullIsFallback_;
    /// Runs while there is no sound server to play through.
    QTimer timer_;
};
