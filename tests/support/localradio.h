#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

/// The loopback radio as a process of its own, for as long as this object lives. The program is named by the
/// environment variable LOCALRADIO.
class LocalRadio
{
public:
    /// Starts it on a free port; isRunning() tells whether that worked.
    explicit LocalRadio(const QStringList &arguments = {});
    ~LocalRadio();

    bool isRunning() const { return !address_.isEmpty(); }
    /// "http://127.0.0.1:PORT", without a trailing "/".
    const QString &address() const { return address_; }
    /// The catalogue, most listeners first.
    const QJsonArray &stations() const { return stations_; }
    /// What it has logged so far under that name of an event.
    QList<QJsonObject> logged(const QString &event) const;

private:
    QTemporaryDir folder_;
    QProcess process_;
    QString address_;
    QJsonArray stations_;
};
