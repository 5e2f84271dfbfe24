#include "localradio/sound/soundlibrary.h"

#include "localradio/sound/oggloop.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>

namespace localradio {

namespace {

Turn turnOf(Container container, const QByteArray &file)
{
    switch (container) {
    case Container::Frames:
        return Turn::ofFrames(file);
    case Container::Flac:
        return Turn::ofFlac(file);
    case Container::Chain:
        return Turn::ofChain(file);
    case Container::TransportStream:
        return Turn::ofTransportStream(file);
    case Container::Fragments:
        return Turn::ofFragments(file);
    case Container::Clusters:
        return Turn::ofClusters(file);
    case Container::Ogg:
        break;
    }
    return {};
}

} // namespace

SoundLibrary::SoundLibrary(QString directory)
    : directory_(std::move(directory))
{
}

const QByteArray &SoundLibrary::loop(int index)
{
    QByteArray &loop = loops_.at(static_cast<std::size_t>(index));
    if (loop.isEmpty()) {
        loop = read(QString::number(index) + QLatin1StringView(factsOf(loopFormat(index)).suffix));
    }
    return loop;
}

const QByteArray &SoundLibrary::file(const Kind &kind)
{
    const std::string_view name = kind.source == nullptr ? kind.name : kind.source;
    QByteArray &file = files_[name];
    if (file.isEmpty()) {
        file = read(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
    }
    return file;
}

std::shared_ptr<const Turn> SoundLibrary::turn(const Kind &kind)
{
    auto &turn = turns_[kind.name];
    if (!turn) {
        auto read = std::make_shared<const Turn>(turnOf(kind.container, file(kind)));
        turn = read->units.empty() ? nullptr : std::move(read);
    }
    return turn;
}

std::unique_ptr<AudioSource> SoundLibrary::source(const Kind &kind)
{
    if (kind.container == Container::Ogg) {
        return AudioSource::create(Format::Ogg, file(kind));
    }
    auto played = turn(kind);
    if (!played) {
        return nullptr;
    }
    // Who hears a chain knows which of its links comes when.
    const int start = kind.container == Container::Chain
                          ? 0
                          : QRandomGenerator::global()->bounded(static_cast<int>(played->units.size()));
    return std::make_unique<EndlessTurn>(std::move(played), start);
}

QString SoundLibrary::defaultDirectory()
{
    return QStringLiteral(LOCALRADIO_LOOPS_DIRECTORY);
}

QByteArray SoundLibrary::read(const QString &name) const
{
    QFile file(directory_ + u'/' + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const Kind *findKind(std::string_view name)
{
    const auto found = std::ranges::find(kinds, name, &Kind::name);
    return found == kinds.end() ? nullptr : &*found;
}

} // namespace localradio
