#pragma once

#include <QByteArray>
#include <QHash>
#include <memory>
#include <mpv/stream_cb.h>
#include <mutex>
#include <vector>

class BytePipe;

/// The pipes that one core may read, each under an address that is good for once. Addresses of stations never
/// reach libmpv. Thread-safe; it must outlive the core.
class PipeProtocol
{
public:
    /// The scheme of the addresses.
    static constexpr char scheme[] = "plumtide";

    /// The address under which the core finds `pipe`.
    QByteArray offer(const std::shared_ptr<BytePipe> &pipe);

    /// An mpv_stream_cb_open_ro_fn; `protocol` is one of these.
    static int open(void *protocol, char *address, mpv_stream_cb_info *info);

private:
    /// What libmpv is given of a pipe that it opens.
    struct Opened
    {
        std::shared_ptr<BytePipe> pipe() const;
        void close();

        mutable std::mutex mutex;
        std::shared_ptr<BytePipe> open; ///< null once it is closed
    };

    Opened *take(const QByteArray &address);

    std::mutex mutex_;
    quint64 lastNumber_ = 0;
    QHash<QByteArray, std::shared_ptr<BytePipe>> offered_;
    /// As long as the core: libmpv may cancel on one thread what it closes on another.
    std::vector<std::unique_ptr<Opened>> opened_;
};
