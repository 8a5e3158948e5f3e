#include "presentation/preview/ProblemBar.h"

#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace tavrin {

ProblemBar::ProblemBar(PreviewPane& pane) : text(new QLabel) {
    setObjectName("problemBar");
    setAutoFillBackground(true);
    text->setObjectName("problemText");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 4);
    layout->addWidget(text, 1);
    const auto addButton = [&](const char* name, const char* label, const char* tip, auto&& effect) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setText(QString::fromUtf8(label));
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        connect(button, &QToolButton::clicked, this, effect);
        layout->addWidget(button);
    };
    addButton("previousProblemButton", "↑", "Previous problem", [&pane] { pane.goToProblem(false); });
    addButton("nextProblemButton", "↓", "Next problem", [&pane] { pane.goToProblem(true); });
    addButton("showOnlyProblems", "Show Only These", "Show only the items with problems",
              [&pane] { pane.setShow(PreviewPane::Show::problems); });
    applyColours();
    hide();
}

void ProblemBar::showProblems(const PreviewTableModel& model) {
    const auto count = static_cast<int>(model.problems().size());
    text->setText(count == 1 ? QString("⚠ 1 item cannot be renamed as shown.")
                             : QString("⚠ %L1 items cannot be renamed as shown.").arg(count));
    text->setAccessibleName(text->text());
    setVisible(count > 0);
}

void ProblemBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    // Set colours are told as a change too.
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColours();
}

void ProblemBar::applyColours() {
    const WindowColours& colours = WindowColours::of(palette());
    QPalette tinted;
    tinted.setColor(QPalette::Window, colours.errorTint);
    tinted.setColor(QPalette::WindowText, colours.errorText);
    setPalette(tinted);
}

} // namespace tavrin
