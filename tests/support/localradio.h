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
    /// The same for its second port, which serves the same.
    const QString &secondAddress() const { return secondAddress_; }
    /// "https://localhost:PORT", which serves the same too, where the arguments name a certificate.
    const QString &encryptedAddress() const { return encryptedAddress_; }
    /// The address of the stream of the station in that row of the catalogue.
    QString stream(int row) const;
    /// The first `bytes` of that stream's answer, head and all; fewer if it takes too long.
    QByteArray beginning(int row, qsizetype bytes) const;
    /// The catalogue, most listeners first.
    const QJsonArray &stations() const { return stations_; }
    /// What it answers to a GET of that target, head and all, until it closes the connection.
    QByteArray get(const QString &target) const;
    void signal(int number) const;
    /// The kinds of sound that it has besides, as it lists them: name, path and pitch.
    QJsonArray kinds() const;
    /// What it has logged so far under that name of an event.
    QList<QJsonObject> logged(const QString &event) const;

private:
    QString readAddress();

    QTemporaryDir folder_;
    QProcess process_;
    QString address_;
    QString secondAddress_;
    QString encryptedAddress_;
    QJsonArray stations_;
};
