#pragma once

#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>

/// An Icecast server with sources that send it a tone each; for as long as this object lives.
class Icecast
{
public:
    /// The one mount that asks its listeners for a user and a password, and whom it lets in.
    static constexpr char privateMount[] = "/private.mp3";
    static constexpr char user[] = "listener";
    static constexpr char password[] = "open sesame";

    /// Starts it on a free port; isRunning() tells whether that worked.
    Icecast();
    /// Ends all its processes.
    ~Icecast();

    bool isRunning() const { return running_; }
    /// The address of what it serves at `path`.
    QByteArray address(const QByteArray &path) const;

    /// Brings `mount` on the air with a tone of that pitch, in Hz, in real time. The format is that of the
    /// suffix: ".mp3", ".aac" or ".ogg". Whether it is there, after some seconds at most.
    bool startSource(const QByteArray &mount, int pitch);
    /// Ends the source of `mount`. Whether the mount is gone, after some seconds at most.
    bool endSource(const QByteArray &mount);

private:
    QString configurationFile() const { return folder_.filePath(QStringLiteral("icecast.xml")); }
    QString listenersFile() const { return folder_.filePath(QStringLiteral("listeners")); }
    bool start();
    void writeConfiguration() const;
    QByteArray get(const QByteArray &path) const;
    bool isOnAir(const QByteArray &mount) const;

    QTemporaryDir folder_;
    quint16 port_ = 0;
    bool running_ = false;
    QProcess server_;
    QHash<QByteArray, std::shared_ptr<QProcess>> sources_;
};
