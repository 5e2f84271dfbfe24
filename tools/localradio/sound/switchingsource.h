#pragma once

#include "localradio/sound/audiosource.h"

#include <algorithm>

namespace localradio {

/// One source, and after so many bytes, or where its next unit begins, another.
class SwitchingSource : public AudioSource
{
public:
    SwitchingSource(std::unique_ptr<AudioSource> first, qint64 bytes, std::unique_ptr<AudioSource> then)
        : first_(std::move(first))
        , then_(std::move(then))
        , left_(bytes)
    {
    }

    QByteArray read(qsizetype bytes) override
    {
        QByteArray audio;
        if (left_ > 0) {
            audio = first_->read(std::min(bytes, left_));
            left_ -= audio.size();
        }
        return audio.size() < bytes ? audio + then_->read(bytes - audio.size()) : audio;
    }

private:
    std::unique_ptr<AudioSource> first_;
    std::unique_ptr<AudioSource> then_;
    qint64 left_;
};

} // namespace localradio
