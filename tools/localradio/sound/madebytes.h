#pragma once

#include "localradio/sound/audiosource.h"

#include <functional>

namespace localradio {

/// Bytes that are made piece by piece, without end.
class MadeBytes : public AudioSource
{
public:
    /// The piece `number`, from 0 on. Not empty.
    using Make = std::function<QByteArray(qint64 number)>;

    explicit MadeBytes(Make make)
        : make_(std::move(make))
    {
    }

    QByteArray read(qsizetype bytes) override
    {
        QByteArray made;
        while (made.size() < bytes) {
            made += make_(next_++);
        }
        return made;
    }

private:
    Make make_;
    qint64 next_ = 0;
};

} // namespace localradio
