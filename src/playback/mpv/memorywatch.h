#pragma once

#include <QtGlobal>

/// How much memory of its own this process has taken since a moment.
class MemoryWatch
{
public:
    /// Begins anew at what the process has now.
    void begin() { before_ = ownBytes(); }
    /// Since begin(); negative where the process has shrunk.
    qint64 grownBytes() const { return ownBytes() - before_; }

private:
    static qint64 ownBytes();

    qint64 before_ = 0;
};
