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
/// are opened and read on threads of its own, so that a slow disk holds nobody up; the main thread asks, and
/// gets the answer. What is no picture, is too large, or is no plain local file gives a null image.
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

    /// A picture that is being waited for.
    struct Request
    {
        std::function<void(const QImage &)> done;
    };

    ArtworkLoader();
    /// Calls off what has not begun, and waits for the rest.
    ~ArtworkLoader() override;

    /// The one that all views share; it lives as long as the application object, which must exist.
    static ArtworkLoader &shared();

    /// What can be shown at once: a picture among the program's own, or what was read last from the file at
    /// `path`; null where there is none. Never looks at the disk. `side` is in device pixels.
    QImage picture(const QString &path, int side);

    /// Looks at the file at `path`, an absolute one, and calls `done` with what it shows now, or null, from
    /// the event loop of the main thread. Nothing is called once the result of this is let go; a request
    /// that has not begun by then costs nothing.
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
