#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>
#include <vector>

/// A sound server of the test's own, with one null sink. Programs and libraries of this process
/// find it by PULSE_SERVER, which this sets.
class SoundServer
{
public:
    /// Starts it; isRunning() tells whether that worked.
    SoundServer();
    ~SoundServer();

    bool isRunning() const { return process_.state() == QProcess::Running; }
    /// Ends it, as a server that crashes does.
    void end();
    /// Starts it again at the same address, and waits until it answers.
    void start();

private:
    QTemporaryDir folder_;
    QString socket_;
    QProcess process_;
};

/// Records in one channel, at 44.1 kHz, what the sink of the running SoundServer plays.
class SoundRecorder
{
public:
    SoundRecorder();
    ~SoundRecorder();

    /// How many samples have come so far.
    qsizetype size();
    /// Those from `begin` until now, or `count` of them; full scale is 1.
    std::vector<double> samples(qsizetype begin, qsizetype count = -1);
    /// The last `count` of them; fewer where fewer have come.
    std::vector<double> last(qsizetype count);
    /// Waits for `count` more of them, and returns those; none where they do not come.
    std::vector<double> next(qsizetype count);

    static constexpr int sampleRate = 44100;

private:
    QProcess process_;
    QByteArray bytes_;
};
