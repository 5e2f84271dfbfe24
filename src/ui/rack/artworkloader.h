#pragma once

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <functional>
#include <memory>
#include <utility>

/// Loads the pictures of stations as squares of the wanted size: the middle of each, smoothly scaled. Files
/// are opened and read on threads of its own, so that a slow disk does not block the main thread, which asks
/// and receives the answer. A file that is no picture, too large, or not a regular local file gives a null
/// image.
class ArtworkLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 maximumBytes = qint64{32} * 1024 * 1024;
    /// Larger pictures are not decoded, however small their files are; a JPEG may have more, for it is
    /// decoded at a fraction of its size.
    static constexpr qint64 maximumPixels = qint64{4096} * 4096;
    static constexpr qint64 maximumPhotoPixels = qint64{6000} * 6000;
    /// The longest side that is delivered, in pixels.
    static constexpr int maximumSide = 1024;

    /// A picture that is awaited.
    struct Request
    {
        std::function<void(const QImage &)> done;
    };

    ArtworkLoader();
    /// Cancels the requests that have not begun, and waits for the others.
    ~ArtworkLoader() override;

    /// The one that all views share; it lives as long as the application object, which must exist.
    static ArtworkLoader &shared();

    /// What can be shown at once: a picture among the program's own, or what was read last from the file at
    /// `path`; null where there is none. Never accesses the disk. `side` is in device pixels.
    QImage picture(const QString &path, int side);

    /// Reads the file at `path`, an absolute path, and calls `done` with its picture as it is now, or null,
    /// from the event loop of the main thread. `done` is not called once the returned request is released; a
    /// request that has not begun by then costs nothing.
    [[nodiscard]] std::shared_ptr<const Request> request(const QString &path, int side,
                                                         std::function<void(const QImage &)> done);

private:
    using Key = std::pair<QString, int>;
    /// Which state of which file an image was read from.
    struct Stamp
    {
        quint64 device = 0;
        quint64 file = 0;
        qint64 size = 0;
        qint64 seconds = 0;
        qint64 nanoseconds = 0;
        bool operator==(const Stamp &) const = default;
    };
    struct Entry
    {
        Stamp stamp;
        QImage image;
    };

    QImage load(const QString &path, int side);
    void keep(const Key &key, const Entry &entry);

    QMutex mutex_;
    QCache<Key, Entry> cache_;
    QThreadPool pool_;
};
