#include "session/favourites.h"

#include "base/exception.h"
#include "directory/directorysource.h"

#include <QLoggingCategory>
#include <algorithm>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcRack, "plumtide.rack")

/// Where the list is kept, in the user's music folder.
const QString favouritesFolder = QStringLiteral("com.plumtide.folders");
const QString favouritesFile = QStringLiteral("plumtide.data");

/// What a station of the directory begins with; bass and middle differ from those of any other new record.
constexpr double directoryVolume = 6.0;
constexpr double directoryBass = 5.0;
constexpr double directoryMidrange = 5.0;
constexpr double directoryTreble = 6.0;

StationRecord recordOf(const StationEntry &entry, const QString &address)
{
    auto station = std::make_shared<RadioModel>();
    station->setName(entry.value(QLatin1StringView("name")));
    station->setGenre(entry.value(QLatin1StringView("genre")));
    station->setMid(entry.value(QLatin1StringView("id")));
    station->setMountType(entry.value(QLatin1StringView("mt")));
    station->setBitrate(entry.value(QLatin1StringView("bitrate")));
    station->setVolume(directoryVolume);
    station->setBass(directoryBass);
    station->setMidrange(directoryMidrange);
    station->setTreble(directoryTreble);
    station->setCustom({});
    if (!address.isNull()) {
        station->setUrl(address);
    }
    return station;
}
} // namespace

Favourites::Favourites(const DirectorySource &directory)
    : directory_(directory)
{
    const auto forgetRemoved = [this] { setRemoved({}); };
    connect(&rack_, &FavouritesRack::reset, this, forgetRemoved);
    connect(&rack_, &FavouritesRack::inserted, this, forgetRemoved);
    connect(&rack_, &FavouritesRack::removed, this, forgetRemoved);
    connect(&rack_, &FavouritesRack::edited, this, forgetRemoved);
}

void Favourites::read()
{
    const auto stored = store_.reaDataFromStorageFolder(favouritesFolder, favouritesFile);
    rack_.setRadioItemCollectionArray(stored.value_or(StationRecords()));
}

void Favourites::claim()
{
    if (!FavouritesStore::isFolderExistAtMusicFolder(favouritesFolder)) {
        FavouritesStore::createDirectoryOnMusicDirectory(favouritesFolder);
    }
    store_.claim(favouritesFolder, favouritesFile);
}

bool Favourites::save()
{
    return store_.saveDataToStorageFolder(favouritesFolder, favouritesFile, rack_.radioItemCollectionArray());
}

void Favourites::release()
{
    store_.release();
}

void Favourites::add(const StationEntry &station, qsizetype index)
{
    const StationRecord record = recordOf(station, directory_.favouriteAddress(station));
    try {
        rack_.insertObjectAtArrangedObjectIndex(record, index);
    } catch (const Exception &) {
        rack_.insertObjectAtArrangedObjectIndex(record, 0);
    }
    rack_.rearrangeObjects();
    qCInfo(lcRack) << "repositioning complete";
}

void Favourites::add(const StationRecord &station)
{
    rack_.addObject(station);
    rack_.rearrangeObjects();
}

void Favourites::addBlank()
{
    auto station = std::make_shared<RadioModel>();
    station->setCustom(true);
    station->setImageFilePath(QString(RadioModel::customArtwork));
    rack_.insertObjectAtArrangedObjectIndex(station, 0);
    rack_.rearrangeObjects();
}

void Favourites::move(qsizetype from, qsizetype to)
{
    try {
        const StationRecord station = elementAt(rack_.radioItemCollectionArray(), from);
        const qsizetype count = rack_.radioItemCollectionArray().size();
        if (to > count) {
            return;
        }
        rack_.removeObjectAtArrangedObjectIndex(from);
        rack_.insertObjectAtArrangedObjectIndex(station, std::min(to, count - 1));
        rack_.rearrangeObjects();
    } catch (const Exception &exception) {
        qCWarning(lcRack).noquote() << "e" << exception.reason();
    }
}

void Favourites::remove(const QList<qsizetype> &indexes)
{
    std::vector<Removed> removed;
    for (auto index = indexes.crbegin(); index != indexes.crend(); ++index) {
        removed.push_back({elementAt(rack_.radioItemCollectionArray(), *index), *index});
        rack_.removeObjectAtArrangedObjectIndex(*index);
        Q_EMIT stationRemoved(removed.back().station);
    }
    if (removed.empty()) {
        return;
    }
    std::reverse(removed.begin(), removed.end());
    // The one that has moved up is the next one to be worked on.
    const qsizetype last = rack_.radioItemCollectionArray().size() - 1;
    rack_.setSelectionIndexes({std::min(removed.front().index, last)});
    rack_.rearrangeObjects();
    setRemoved(std::move(removed));
}

qsizetype Favourites::undoRemoval()
{
    QList<qsizetype> indexes;
    for (const Removed &one : std::exchange(removed_, {})) {
        rack_.insertObjectAtArrangedObjectIndex(one.station, one.index);
        indexes.append(one.index);
    }
    if (!indexes.isEmpty()) {
        rack_.setSelectionIndexes(indexes);
        rack_.rearrangeObjects();
        Q_EMIT canUndoRemovalChanged();
    }
    return indexes.value(0, -1);
}

void Favourites::setRemoved(std::vector<Removed> removed)
{
    const bool could = canUndoRemoval();
    removed_ = std::move(removed);
    if (could != canUndoRemoval()) {
        Q_EMIT canUndoRemovalChanged();
    }
}
