#include "playback/mpv/pipeprotocol.h"

#include "playback/stream/bytepipe.h"

#include <utility>

namespace {
/// What libmpv keeps of a pipe that it has opened.
using Cookie = std::shared_ptr<BytePipe>;

BytePipe &pipeOf(void *cookie)
{
    return **static_cast<Cookie *>(cookie);
}
} // namespace

QByteArray PipeProtocol::offer(const std::shared_ptr<BytePipe> &pipe)
{
    const std::scoped_lock lock(mutex_);
    QByteArray address = scheme + QByteArray("://") + QByteArray::number(++lastNumber_);
    offered_.insert(address, pipe);
    return address;
}

int PipeProtocol::open(void *protocol, char *address, mpv_stream_cb_info *info)
{
    std::shared_ptr<BytePipe> pipe = static_cast<PipeProtocol *>(protocol)->take(address);
    if (!pipe) {
        return MPV_ERROR_LOADING_FAILED;
    }
    info->cookie = new Cookie(std::move(pipe));
    info->read_fn = [](void *cookie, char *to, uint64_t most) -> int64_t {
        return pipeOf(cookie).read(to, static_cast<qsizetype>(most));
    };
    info->cancel_fn = [](void *cookie) { pipeOf(cookie).cancel(); };
    info->close_fn = [](void *cookie) { delete static_cast<Cookie *>(cookie); };
    return 0;
}

std::shared_ptr<BytePipe> PipeProtocol::take(const QByteArray &address)
{
    const std::scoped_lock lock(mutex_);
    return offered_.take(address);
}
