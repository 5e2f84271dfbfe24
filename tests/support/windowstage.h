#pragma once

#include "app/program.h"
#include "settings/statefile.h"
#include "support/fakebackend.h"
#include "support/scriptedserver.h"
#include "ui/table/rvtableview.h"

#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QSettings>
#include <QTest>

/// The real window before a scripted directory and a fake backend, as at a first start or
/// with what earlier ones have kept.
struct WindowStage
{
    enum class Start { First, Next };

    explicit WindowStage(const QByteArray &answer, Start start = Start::First)
    {
        // They lie in a static library, whose initialisers the linker drops.
        Q_INIT_RESOURCE(plumtide);
        server.scriptBody("/legacy/Top500/", answer);
        QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("plumtide"),
                  QStringLiteral("plumtide"))
            .clear();
        if (start == Start::First) {
            QFile::remove(StateFile::path());
        }
        state = std::make_unique<StateFile>();
        program = std::make_unique<Program>(
            DirectoryService{.baseAddress = server.address(QStringLiteral("/")),
                             .tuneInBaseAddress = QStringLiteral("http://tune.example")},
            backend, *state);
        window = &program->window;
        window->show();
    }

    template <class T>
    T *find(const QString &name)
    {
        return window->findChild<T *>(name);
    }
    RVTableView *table() { return find<RVTableView>(QStringLiteral("myTableView")); }
    QString title() { return find<QLabel>(QStringLiteral("playerStatusString"))->text(); }
    QString status() { return find<QLabel>(QStringLiteral("subtitleStatusString"))->text(); }
    QString cell(int row, int column) { return table()->model()->index(row, column).data().toString(); }
    QStringList column(int column)
    {
        QStringList texts;
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            texts.append(cell(row, column));
        }
        return texts;
    }
    void doubleClick(const QPoint &position)
    {
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, position);
        QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, position);
    }
    QPoint middleOf(int row) { return table()->visualRect(table()->model()->index(row, 1)).center(); }
    void clickHeader(int section)
    {
        QHeaderView *header = table()->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(section) + 20, header->height() / 2));
    }

    ScriptedServer server;
    FakeBackend backend;
    std::unique_ptr<StateFile> state;
    std::unique_ptr<Program> program;
    MainWindow *window = nullptr;
};
