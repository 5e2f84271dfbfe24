#include "support/stage.h"

#include "ui/table/rvtableview.h"

#include <QLabel>
#include <QRegularExpression>
#include <QTest>
#include <QToolButton>
#include <clocale>

using namespace Qt::StringLiterals;

namespace {
const QString connecting = u"Connecting please wait.."_s;
const QString buffering = u"Buffering .."_s;
const QString terminated = u"Terminated / lost connection"_s;
const QString notResponding = u"Server is not responding"_s;
} // namespace

const QStringList Stage::healthyStart{connecting, buffering, u"- Streaming -"_s};
const QStringList Stage::soundsEnd{buffering, u"Lost connection !"_s, terminated};
const QStringList Stage::failure{connecting, u"Failed"_s, terminated, notResponding};
const QStringList Stage::silence{connecting, terminated, notResponding};

Stage::Stage(const QString &directory, const AudioOutput &output)
    : backend(output)
    , settings(QSettings::NativeFormat, QSettings::UserScope, u"plumtide"_s, u"plumtide"_s)
    , program({.baseAddress = directory + u'/', .tuneInBaseAddress = directory}, backend, state)
{
    // Whatever is played in whichever way: the versions of libmpv differ in what they know.
    QTest::failOnWarning(QRegularExpression(u"^libmpv refuses "_s));
    std::setlocale(LC_NUMERIC, "C");
    settings.clear();
    QObject::connect(&playback, &StreamPlayback::statusChanged, [this](const QString &status) {
        if (statuses.isEmpty() || statuses.constLast() != status) {
            statuses.append(status);
        }
    });
    window.show();
}

RVTableView *Stage::table()
{
    return window.findChild<RVTableView *>(u"myTableView"_s);
}

QString Stage::text(const QString &name)
{
    const auto *label = window.findChild<QLabel *>(name);
    return label != nullptr ? label->text() : QString();
}

void Stage::click(const QString &button)
{
    window.findChild<QToolButton *>(button)->click();
}

void Stage::doubleClick(int row)
{
    if (!QTest::qWaitFor([&] { return table()->model()->rowCount() > row; })) {
        QTest::qFail("the directory has no such row", __FILE__, __LINE__);
        return;
    }
    statuses.clear();
    const QPoint position = table()->visualRect(table()->model()->index(row, 1)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, position);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, position);
}

void Stage::play(const StationRecord &station)
{
    statuses.clear();
    program.session.playRecord(station);
}

StationRecord privateStation(const QUrl &server, const QString &mountpoint, const QVariant &username,
                             const QVariant &password)
{
    auto station = std::make_shared<RadioModel>();
    station->setUrl(QString(server.scheme() + u"://"_s + server.host()));
    station->setPort(QString::number(server.port()));
    station->setMountpoint(mountpoint);
    station->setUsername(username);
    station->setPassword(password);
    station->setCustom(true);
    station->setRadioIsPrivate(true);
    return station;
}

OneStationDirectory::OneStationDirectory()
{
    scriptBody("/legacy/Top500/", "<l><tunein base='/tune'/><station name='station' id='1'/></l>");
}

void OneStationDirectory::leadTo(const QList<QByteArray> &entries)
{
    QByteArray playlist = "[playlist]\n";
    for (qsizetype index = 0; index < entries.size(); ++index) {
        playlist += "File" + QByteArray::number(index + 1) + '=' + entries[index] + '\n';
    }
    scriptBody("/tune", playlist);
}
