#include "presentation/preview/ProblemBar.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace tavrin {

ProblemBar::ProblemBar(PreviewPane& pane) : symbol(new QLabel), text(new QLabel) {
    setObjectName("problemBar");
    setAutoFillBackground(true);
    text->setObjectName("problemText");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 4);
    layout->setSpacing(4);
    symbol->setFixedSize(fontMetrics().height() + 2, fontMetrics().height() + 2);
    layout->addWidget(symbol);
    layout->addWidget(text, 1);
    const auto addButton = [&](const char* name, const QIcon& icon, const char* tip, auto&& effect) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setIcon(icon);
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, this, effect);
        layout->addWidget(button);
        return button;
    };
    addButton("previousProblemButton", GlyphIcon::of(Glyph::up), "Previous problem (Shift+F8)",
              [&pane] { pane.goToProblem(false); });
    addButton("nextProblemButton", GlyphIcon::of(Glyph::down), "Next problem (F8)",
              [&pane] { pane.goToProblem(true); });
    addButton("showOnlyProblems", {}, "Show only the items with problems", [&pane] {
        pane.setShow(PreviewPane::Show::problems);
    })->setText("Show Only These");
    applyColours();
    hide();
}

void ProblemBar::showProblems(const PreviewTableModel& model) {
    const auto count = static_cast<int>(model.problems().size());
    text->setText(count == 1 ? QString("1 item cannot be renamed as shown.")
                             : QString("%L1 items cannot be renamed as shown.").arg(count));
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
    tinted.setColor(QPalette::ButtonText, colours.errorText);
    tinted.setColor(QPalette::Button, colours.errorTint);
    setPalette(tinted);
    QPixmap picture(symbol->size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    GlyphIcon::paint(painter, symbol->rect(), Glyph::problem, colours.errorText);
    painter.end();
    symbol->setPixmap(picture);
}

} // namespace tavrin
