#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Turns the signals that ask a program to end, TERM, INT and HUP, into a Qt signal on the main thread, so
/// that it quits in order. A signal that is ignored, as HUP is under nohup, stays ignored. One object at a
/// time; once it is destroyed, the signals end the process at once again.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

Q_SIGNALS:
    void received();

private:
    QSocketNotifier notifier_;
};
