#include "presentation/ProgressPage.h"

#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "presentation/QtText.h"
#include "shell/MainController.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrin {

ProgressPage::ProgressPage(WindowServices shared, QWidget* parent) : QWidget(parent), services(shared) {
    setObjectName("progressPage");
    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(64));
    stage = new QLabel;
    stage->setObjectName("stageText");
    QFont large = stage->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    stage->setFont(large);
    bar = new QProgressBar;
    bar->setObjectName("progressBar");
    bar->setAccessibleName(tr("Progress"));
    bar->setTextVisible(false);
    bar->setFixedWidth(480);
    items = new QLabel;
    items->setObjectName("itemText");
    description = new QLabel;
    description->setObjectName("currentActionDescription");
    description->setForegroundRole(QPalette::PlaceholderText);
    stopButton = new QPushButton(tr("&Stop After This Item"));
    stopButton->setObjectName("stopButton");
    auto* layout = new QVBoxLayout(this);
    layout->addStretch(2);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{icon, stage, bar, items, description, stopButton}) {
        layout->addWidget(widget, 0, Qt::AlignHCenter);
        layout->addSpacing(8);
    }
    layout->addStretch(3);
    connect(stopButton, &QPushButton::clicked, this, [this] {
        services.controller.renameEngine().requestStop();
        refresh();
    });
}

void ProgressPage::refresh() {
    const ProgressInfo& progress = services.controller.progressInfo();
    stage->setText(toQString(progress.stageText()));
    bar->setRange(0, progress.isIndeterminate() ? 0 : std::max(1, progress.numberOfItems()));
    bar->setValue(progress.currentItemNumber());
    items->setText(toQString(progress.itemText()));
    const QString text = toQString(progress.currentActionDescription());
    description->setText(description->fontMetrics().elidedText(text, Qt::ElideMiddle, width() - 80));
    stopButton->setEnabled(!services.controller.renameEngine().isStopRequested());
}

} // namespace tavrin
