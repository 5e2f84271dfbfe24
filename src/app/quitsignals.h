#pragma once

#include <QObject>
#include <QSocketNotifier>

/// Turns the signals that ask a program to end, TERM, INT and HUP, into a Qt signal on the main thread, so
/// that it ends in order. A signal that is being ignored, as HUP is under nohup, stays ignored. One object at
/// a time; the signals end the process at once again when it is gone.
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
