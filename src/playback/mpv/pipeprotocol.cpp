#include "playback/mpv/pipeprotocol.h"

#include "playback/stream/bytepipe.h"

#include <utility>

std::shared_ptr<BytePipe> PipeProtocol::Opened::pipe() const
{
    const std::scoped_lock lock(mutex);
    return open;
}

void PipeProtocol::Opened::close()
{
    const std::scoped_lock lock(mutex);
    open.reset();
}

QByteArray PipeProtocol::offer(const std::shared_ptr<BytePipe> &pipe)
{
    const std::scoped_lock lock(mutex_);
    QByteArray address = scheme + QByteArray("://") + QByteArray::number(++lastNumber_);
    offered_.insert(address, pipe);
    return address;
}

int PipeProtocol::open(void *protocol, char *address, mpv_stream_cb_info *info)
{
    Opened *const opened = static_cast<PipeProtocol *>(protocol)->take(address);
    if (opened == nullptr) {
        return MPV_ERROR_LOADING_FAILED;
    }
    info->cookie = opened;
    info->read_fn = [](void *cookie, char *to, uint64_t most) -> int64_t {
        return static_cast<Opened *>(cookie)->pipe()->read(to, static_cast<qsizetype>(most));
    };
    info->cancel_fn = [](void *cookie) {
        if (const auto pipe = static_cast<Opened *>(cookie)->pipe()) {
            pipe->cancel();
        }
    };
    info->close_fn = [](void *cookie) { static_cast<Opened *>(cookie)->close(); };
    return 0;
}

/// Null where nothing is offered under that address.
PipeProtocol::Opened *PipeProtocol::take(const QByteArray &address)
{
    const std::scoped_lock lock(mutex_);
    std::shared_ptr<BytePipe> pipe = offered_.take(address);
    if (!pipe) {
        return nullptr;
    }
    opened_.push_back(std::make_unique<Opened>());
    opened_.back()->open = std::move(pipe);
    return opened_.back().get();
}
