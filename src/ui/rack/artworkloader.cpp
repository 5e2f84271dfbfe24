#include "ui/rack/artworkloader.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QImageReader>
#include <QMetaObject>
#include <QMutexLocker>
#include <QPointer>
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>

namespace {
constexpr int loaderThreads = 2;
/// All kept pictures together, in KiB.
constexpr int cacheSize = 8 * 1024;
/// How many times larger than wanted a photo is decoded before it is scaled smoothly.
constexpr int oversampling = 2;
/// Beyond this ratio of its sides a picture is cropped before it is scaled: its long side would grow too
/// long.
constexpr int longestRatio = 8;

/// Formats that contain pixels and nothing else; an SVG, for one, may refer to other files.
constexpr std::array formats{"png", "jpeg", "gif", "webp", "bmp"};

bool isResource(const QString &path)
{
    return path.startsWith(QLatin1StringView(":/"));
}

/// The middle of the picture in `device` as a square, or null.
QImage decode(QIODevice &device, int side)
{
    QImageReader reader(&device);
    reader.setAutoTransform(true);
    const QByteArray format = reader.format();
    // Only JPEG is scaled while it is decoded: the PNG reader would average the palette indexes of indexed
    // pictures.
    const bool scales = format == "jpeg";
    const QSize size = reader.size();
    const qint64 limit = scales ? ArtworkLoader::maximumPhotoPixels : ArtworkLoader::maximumPixels;
    const bool isSupported = std::ranges::any_of(formats, [&](const char *name) { return format == name; });
    if (!isSupported || size.isEmpty() || size.width() > limit / size.height()) {
        return {};
    }
    const int shorter = std::min(size.width(), size.height());
    const int longer = std::max(size.width(), size.height());
    if (scales && shorter > side * oversampling && longer / shorter < longestRatio) {
        reader.setScaledSize(
            size.scaled(side * oversampling, side * oversampling, Qt::KeepAspectRatioByExpanding));
    }
    QImage picture = reader.read();
    if (picture.isNull()) {
        return {};
    }
    const int edge = std::min(picture.width(), picture.height());
    if (picture.width() != picture.height()) {
        picture = picture.copy((picture.width() - edge) / 2, (picture.height() - edge) / 2, edge, edge);
    }
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool isLoadable(const struct stat &state)
{
    return S_ISREG(state.st_mode) && state.st_size > 0 && state.st_size <= ArtworkLoader::maximumBytes;
}
} // namespace

ArtworkLoader::ArtworkLoader()
    : cache_(cacheSize)
{
    pool_.setMaxThreadCount(loaderThreads);
}

ArtworkLoader::~ArtworkLoader()
{
    pool_.clear();
    pool_.waitForDone();
}

ArtworkLoader &ArtworkLoader::shared()
{
    static QPointer<ArtworkLoader> loader;
    if (!loader) {
        loader = new ArtworkLoader;
        loader->setParent(QCoreApplication::instance());
    }
    return *loader;
}

QImage ArtworkLoader::picture(const QString &path, int side)
{
    side = std::clamp(side, 1, maximumSide);
    const Key key(path, side);
    {
        const QMutexLocker lock(&mutex_);
        if (const Entry *entry = cache_.object(key)) {
            return entry->image;
        }
    }
    if (!isResource(path)) {
        return {};
    }
    QFile file(path);
    QImage image = file.open(QIODevice::ReadOnly) ? decode(file, side) : QImage();
    keep(key, {{}, image});
    return image;
}

std::shared_ptr<const ArtworkLoader::Request> ArtworkLoader::request(const QString &path, int side,
                                                                     std::function<void(const QImage &)> done)
{
    auto request = std::make_shared<const Request>(Request{std::move(done)});
    // The pool's thread only checks whether the request is still wanted; it is destroyed on the main thread,
    // which made it.
    pool_.start([this, path, side, wanted = std::weak_ptr(request)] {
        if (wanted.expired()) {
            return;
        }
        const QImage image = load(path, std::clamp(side, 1, maximumSide));
        QMetaObject::invokeMethod(
            this,
            [wanted, image] {
                if (const auto waiting = wanted.lock()) {
                    waiting->done(image);
                }
            },
            Qt::QueuedConnection);
    });
    return request;
}

/// On a thread of the pool.
QImage ArtworkLoader::load(const QString &path, int side)
{
    const Key key(path, side);
    const auto refuse = [&] {
        const QMutexLocker lock(&mutex_);
        cache_.remove(key);
        return QImage();
    };
    if (!path.startsWith(u'/') || path.contains(QChar(0))) {
        return {};
    }
    const QByteArray name = QFile::encodeName(path);
    // Only regular files are opened: opening a pipe may block for ever, and opening a device may have
    // effects. O_NONBLOCK is for a pipe that replaces the file at this moment.
    struct stat state = {};
    if (::stat(name.constData(), &state) != 0 || !isLoadable(state)) {
        return refuse();
    }
    const int descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    QFile file;
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ||
        ::fstat(descriptor, &state) != 0 || !isLoadable(state)) {
        return refuse();
    }
    const Stamp stamp{state.st_dev, state.st_ino, state.st_size, state.st_mtim.tv_sec, state.st_mtim.tv_nsec};
    {
        const QMutexLocker lock(&mutex_);
        const Entry *entry = cache_.object(key);
        if (entry != nullptr && entry->stamp == stamp) {
            return entry->image;
        }
    }
    QByteArray bytes = file.read(state.st_size);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImage image = decode(buffer, side);
    keep(key, {stamp, image});
    return image;
}

void ArtworkLoader::keep(const Key &key, const Entry &entry)
{
    const QMutexLocker lock(&mutex_);
    cache_.insert(key, new Entry(entry), 1 + static_cast<int>(entry.image.sizeInBytes() / 1024));
}
