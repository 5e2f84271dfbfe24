#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <chrono>

/// Divides the time that a start has among the addresses that it tries, so that a dead one leaves time for
/// the next. Main thread.
class TimeShares : public QObject
{
    Q_OBJECT

public:
    explicit TimeShares(std::chrono::milliseconds total);

    /// What the start has in all.
    std::chrono::milliseconds total() const { return total_; }

    /// The time of the start begins.
    void begin();
    /// The share of the next address begins, while `waiting` others wait behind it. The last one may take all
    /// the time that is left, and has no end here.
    void beginShare(qsizetype waiting);
    /// Begins the running share anew, with half of the time that is left; does nothing where none runs.
    void extendShare();
    void endShare();

Q_SIGNALS:
    /// A share has run out.
    void shareOver();

private:
    std::chrono::milliseconds left() const;

    std::chrono::milliseconds total_;
    QElapsedTimer elapsed_;
    QTimer shareTimer_;
};
