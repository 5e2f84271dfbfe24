#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Joins segments to a stream that a player can read as one: leaves out the tags before packed sound (ID3),
/// which say when it is heard (RFC 8216, 3.4).
class HlsSplicer
{
public:
    /// A segment begins, or what stands before segments.
    void begin();
    /// What of the stream its next bytes are.
    QByteArray take(const QByteArray &bytes);

private:
    bool skipTags();

    /// What has come while it is not clear what it is.
    QByteArray head_;
    bool isBeginning_ = true;
    quint64 toSkip_ = 0;
};
