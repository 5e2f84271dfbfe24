#pragma once

#include "support/stage.h"
#include "ui/table/rvtableview.h"

#include <QLineEdit>
#include <QTest>

/// A window that asks its directory as a user does: in the search field.
class DirectoryStage : public Stage
{
public:
    explicit DirectoryStage(const QString &directory)
        : Stage(directory)
    {
        QObject::connect(&program.directory, &StationDirectory::busyChanged, &window,
                         [this](bool busy) { busy_ = busy; });
    }

    void search(const QString &text)
    {
        auto *field = window.findChild<QLineEdit *>(QStringLiteral("searchField"));
        field->clear();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }

    /// Whether an answer is awaited.
    bool isBusy() const { return busy_; }
    /// What the window shows for its stations: how many, or why there are none.
    QString shown()
    {
        const int rows = table()->model()->rowCount();
        return rows > 0 ? QString::number(rows) : table()->accessibleDescription();
    }

private:
    bool busy_ = true; // the top stations
};
