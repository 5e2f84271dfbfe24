#include "app/accessibility.h"

#include "ui/genres/genreaccessibility.h"
#include "ui/rack/rackaccessibility.h"
#include "ui/rack/rvimageview.h"
#include "ui/table/tableaccessibility.h"
#include "ui/widgets/popover.h"
#include "ui/widgets/spinner.h"
#include "ui/widgets/textover.h"

#include <QAccessibleWidget>

namespace {
/// A text that is pressed like a button.
class PressedTextAccessible final : public QAccessibleWidget
{
public:
    explicit PressedTextAccessible(TextOver *text)
        : QAccessibleWidget(text, QAccessible::Button)
    {
    }

    QStringList actionNames() const override
    {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &name) override
    {
        if (name == pressAction()) {
            Q_EMIT static_cast<TextOver *>(object())->clicked();
        } else {
            QAccessibleWidget::doAction(name);
        }
    }
};

QAccessibleInterface *makeWidgetInterface(const QString &, QObject *object)
{
    if (auto *text = qobject_cast<TextOver *>(object)) {
        return new PressedTextAccessible(text);
    }
    if (auto *popover = qobject_cast<Popover *>(object)) {
        return new QAccessibleWidget(popover, QAccessible::Dialog);
    }
    if (auto *spinner = qobject_cast<Spinner *>(object)) {
        return new QAccessibleWidget(spinner, QAccessible::Animation);
    }
    if (auto *artwork = qobject_cast<RVImageView *>(object)) {
        return new QAccessibleWidget(artwork, QAccessible::Graphic);
    }
    return nullptr;
}
} // namespace

void installAccessibility()
{
    QAccessible::installFactory(&makeWidgetInterface);
    installGenreAccessibility();
    installRackAccessibility();
    installTableAccessibility();
}
