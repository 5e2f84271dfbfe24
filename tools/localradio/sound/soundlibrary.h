#pragma once

#include "localradio/sound/kinds.h"
#include "localradio/sound/turn.h"

#include <QString>

#include <array>
#include <map>
#include <memory>
#include <string_view>

namespace localradio {

/// The loops of the stations and the turns of the kinds, read from their files when they are first asked for.
class SoundLibrary
{
public:
    explicit SoundLibrary(QString directory);

    /// The file of the loop `index`; empty if it cannot be read.
    const QByteArray &loop(int index);

    /// The file of `kind`, or of the one that it shares; empty if it cannot be read.
    const QByteArray &file(const Kind &kind);

    /// The turn of a kind that is not plain Ogg; null if its file cannot be read.
    std::shared_ptr<const Turn> turn(const Kind &kind);

    /// An endless stream of `kind`, joined anywhere; null if its file cannot be read.
    std::unique_ptr<AudioSource> source(const Kind &kind);

    /// Where the build has put the files.
    static QString defaultDirectory();

private:
    QByteArray read(const QString &name) const;

    QString directory_;
    std::array<QByteArray, loopCount> loops_;
    std::map<std::string_view, QByteArray> files_;
    std::map<std::string_view, std::shared_ptr<const Turn>> turns_;
};

/// The kind of that name; null if there is none.
const Kind *findKind(std::string_view name);

} // namespace localradio
