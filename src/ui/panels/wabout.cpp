#include "ui/panels/wabout.h"

#include "directory/keyed/answerparser.h"
#include "ui/widgets/copytext.h"
#include "ui/widgets/svgicon.h"
#include "ui_wabout.h"

#include <QCoreApplication>
#include <QShortcut>

namespace {
constexpr int iconSide = 96;
constexpr qreal nameScale = 1.35;

struct UsedLibrary
{
    QString name;
    QString licence;
};

/// With their versions, where these are known without loading a library for it.
QList<UsedLibrary> usedLibraries()
{
    return {
        {QStringLiteral("Qt %1").arg(QLatin1StringView(qVersion())), QStringLiteral("LGPL 3")},
        {QStringLiteral("libmpv"), QStringLiteral("GPL 2 or later")},
        {QStringLiteral("FFmpeg"), QStringLiteral("LGPL 2.1 or GPL 2, or later")},
        {QStringLiteral("Expat %1").arg(AnswerParser::libraryVersion()), QStringLiteral("MIT")},
        {QStringLiteral("libplist"), QStringLiteral("LGPL 2.1 or later")},
        {QStringLiteral("libxcb"), QStringLiteral("MIT")},
    };
}

QString versionLine()
{
    return WAbout::tr("Version %1").arg(QCoreApplication::applicationVersion());
}

QLabel *label(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}
} // namespace

WAbout::WAbout(QObject *parent)
    : QObject(parent)
{
}

WAbout::~WAbout() = default;

QWidget *WAbout::window()
{
    if (!window_) {
        loadWindow();
        windowDidLoad();
    }
    return window_.get();
}

void WAbout::showWindow()
{
    window()->setWindowState(window()->windowState() & ~Qt::WindowMinimized);
    window()->show();
    window()->raise();
    window()->activateWindow();
}

QString WAbout::details()
{
    QString text = QStringLiteral("Plumtide, %1\n").arg(versionLine());
    for (const UsedLibrary &library : usedLibraries()) {
        text += QStringLiteral("%1 (%2)\n").arg(library.name, library.licence);
    }
    return text;
}

void WAbout::loadWindow()
{
    window_ = std::make_unique<QDialog>(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                                     Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint |
                                                     Qt::WindowCloseButtonHint);
    Ui::WAbout ui;
    ui.setupUi(window_.get());
    ui.icon->setPixmap(
        svgIcon(QStringLiteral("plumtide")).pixmap(QSize(iconSide, iconSide), window_->devicePixelRatio()));
    QFont font = ui.name->font();
    font.setPointSizeF(font.pointSizeF() * nameScale);
    ui.name->setFont(font);
    ui.version->setText(versionLine());
    int row = 0;
    for (const UsedLibrary &library : usedLibraries()) {
        QLabel *licence = label(library.licence);
        licence->setForegroundRole(QPalette::PlaceholderText);
        ui.librariesGrid->addWidget(label(library.name), row, 0);
        ui.librariesGrid->addWidget(licence, row, 1);
        ++row;
    }
    for (QLabel *quiet : {ui.version, ui.librariesTitle, ui.copyright}) {
        quiet->setForegroundRole(QPalette::PlaceholderText);
    }
    connect(ui.copyButton, &QPushButton::clicked, this, [] { copyText(details()); });
    connect(ui.closeButton, &QPushButton::clicked, window_.get(), &QWidget::close);
    connect(new QShortcut(QKeySequence::Close, window_.get()), &QShortcut::activated, window_.get(),
            &QWidget::close);
}
