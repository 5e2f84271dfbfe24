#include "ui/widgets/clearaction.h"

#include "ui/widgets/svgicon.h"

#include <QAction>
#include <QCoreApplication>
#include <QLineEdit>

void addClearAction(QLineEdit *field, const QColor &ink)
{
    QAction *clear = field->addAction(svgIcon(QStringLiteral("clear"), ink), QLineEdit::TrailingPosition);
    clear->setText(QCoreApplication::translate("addClearAction", "Clear"));
    clear->setVisible(!field->text().isEmpty());
    QObject::connect(clear, &QAction::triggered, field, &QLineEdit::clear);
    QObject::connect(field, &QLineEdit::textChanged, clear,
                     [clear](const QString &text) { clear->setVisible(!text.isEmpty()); });
}
