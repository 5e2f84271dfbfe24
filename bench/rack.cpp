// The favourites rack with few and with many stations: reading and saving its file, the latter beside what
// the disk alone needs for as many bytes, and what the tiles cost.

#include "base/rvobject.h"
#include "favourites/archive/favouritesstore.h"
#include "favourites/favouritesrack.h"
#include "favourites/valuetransformers.h"
#include "medianmilliseconds.h"
#include "ui/rack/rackview.h"
#include "ui/widgets/look.h"

#include <QApplication>
#include <QFile>
#include <QScrollBar>
#include <cstdio>
#include <unistd.h>

namespace {
const QString folder = QStringLiteral("com.plumtide.folders");
const QString file = QStringLiteral("plumtide.data");

StationRecords stationsOf(int count)
{
    StationRecords stations;
    for (int number = 0; number < count; ++number) {
        auto station = std::make_shared<RadioModel>();
        station->setName(QStringLiteral("Radio Étoile %1").arg(number));
        station->setMid(QString::number(number));
        station->setUrl(QStringLiteral("http://tune.example/tunein.pls?id=%1").arg(number));
        stations.append(station);
    }
    return stations;
}

void writeToDisk(const QString &path, const QByteArray &bytes)
{
    QFile plain(path);
    if (plain.open(QIODevice::WriteOnly) && plain.write(bytes) == bytes.size() && plain.flush()) {
        ::fsync(plain.handle());
    }
}

QByteArray contents(const QString &path)
{
    QFile saved(path);
    return saved.open(QIODevice::ReadOnly) ? saved.readAll() : QByteArray();
}
} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    applyLook(application);
    const QString place = FavouritesStore::musicDirectory() + QLatin1Char('/') + folder + QLatin1Char('/');
    FavouritesStore::createDirectoryOnMusicDirectory(folder);
    ValueTransformers transformers;
    transformers.setValueTransformer(std::make_unique<PathTransformer>(), QStringLiteral("PathTransformer"));

    std::puts("stations   read   save   the disk alone   ratio   show   insert in front   scroll a page");
    for (const int count : {100, 1'000, 10'000}) {
        StationRecords stations = stationsOf(count);
        FavouritesStore store;
        // What stands there is the list before, which the store would keep.
        store.reaDataFromStorageFolder(folder, file);
        const double save = medianMilliseconds([&] {
            // An unchanged list would be left as it is.
            stations.first()->setRadioUuid(RVObject::getUUID());
            store.saveDataToStorageFolder(folder, file, stations);
        });
        const double read = medianMilliseconds([&] { store.reaDataFromStorageFolder(folder, file); });
        const QByteArray bytes = contents(place + file);
        const double disk = medianMilliseconds([&] { writeToDisk(place + QStringLiteral("plain"), bytes); });

        FavouritesRack rack;
        RackView view;
        view.setRack(&rack, transformers);
        view.resize(1148, 640);
        view.show();
        const auto paint = [&view] {
            QCoreApplication::processEvents();
            view.viewport()->repaint();
        };
        const double show = medianMilliseconds([&] {
            rack.setRadioItemCollectionArray(stations);
            paint();
        });
        const double insert = medianMilliseconds([&] {
            rack.insertObjectAtArrangedObjectIndex(std::make_shared<RadioModel>(), 0);
            rack.rearrangeObjects();
            paint();
        });
        const double scroll = medianMilliseconds([&] {
            view.verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd);
            paint();
        });
        std::printf("%8d %6.1f %6.1f %16.1f %7.1f %6.1f %17.1f %15.1f\n", count, read, save, disk,
                    save / disk, show, insert, scroll);
    }
    return 0;
}
