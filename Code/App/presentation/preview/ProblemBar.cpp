#include "presentation/preview/ProblemBar.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewPane.h"

#include <QEvent>
#include <QGuiApplication>
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
    addButton("previousProblemButton", GlyphIcon::of(Glyph::up), "", "Previous problem (Shift+F8)",
              [&pane] { pane.goToProblem(false); });
    addButton("nextProblemButton", GlyphIcon::of(Glyph::down), "", "Next problem (F8)",
              [&pane] { pane.goToProblem(true); });
    addButton("showOnlyProblems", {}, "Show Only These", "Show only the items with problems",
              [&pane] { pane.setShow(PreviewPane::Show::problems); });
    applyColours();
    hide();
}

void ProblemBar::addButton(const char* name, const QIcon& icon, const char* label, const char* tip,
                           std::function<void()> effect) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(icon);
    button->setText(label);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    connect(button, &QToolButton::clicked, this, std::move(effect));
    layout()->addWidget(button);
    buttons.push_back(button);
}

void ProblemBar::showCounts(std::size_t problems, std::size_t madeDistinct) {
    setVisible(problems > 0 || madeDistinct > 0);
    if (problems > 0)
        text->setText(problems == 1 ? QString("1 item cannot be renamed as shown.")
                                    : QString("%L1 items cannot be renamed as shown.").arg(problems));
    else
        text->setText(
            madeDistinct == 1
                ? QString("1 name was made distinct: it would have been the same as another.")
                : QString("%L1 names were made distinct: they would have been the same.").arg(madeDistinct));
    text->setAccessibleName(text->text());
    for (QWidget* button : buttons)
        button->setVisible(problems > 0);
    isAboutProblems = problems > 0;
    applyColours();
}

void ProblemBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    // Set colours are told as a change too.
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColours();
}

void ProblemBar::applyColours() {
    // The bar's own palette is tinted, so it does not tell what the desktop's has become.
    const WindowColours& colours = WindowColours::of(QGuiApplication::palette());
    QPalette tinted;
    const QColor tint = isAboutProblems ? colours.errorTint : colours.infoTint;
    const QColor words = isAboutProblems ? colours.errorText : colours.infoText;
    tinted.setColor(QPalette::Window, tint);
    tinted.setColor(QPalette::WindowText, words);
    tinted.setColor(QPalette::ButtonText, words);
    tinted.setColor(QPalette::Button, tint);
    setPalette(tinted);
    QPixmap picture(symbol->size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    GlyphIcon::paint(painter, symbol->rect(), isAboutProblems ? Glyph::problem : Glyph::distinct, words);
    painter.end();
    symbol->setPixmap(picture);
}

} // namespace tavrin
