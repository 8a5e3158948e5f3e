#include "presentation/preview/ProblemBar.h"

#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowCommands.h"

#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace tavrin {

ProblemBar::ProblemBar(WindowCommands& commands) : symbol(new QLabel), text(new QLabel) {
    setObjectName("problemBar");
    setAutoFillBackground(true);
    text->setObjectName("problemText");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 4);
    layout->setSpacing(4);
    symbol->setFixedSize(fontMetrics().height() + 2, fontMetrics().height() + 2);
    layout->addWidget(symbol);
    layout->addWidget(text, 1);
    addButton(makeToolButton("previousProblemButton", Glyph::up, tr("Previous problem (Shift+F8)")),
              *commands.previousProblem);
    addButton(makeToolButton("nextProblemButton", Glyph::down, tr("Next problem (F8)")),
              *commands.nextProblem);
    auto* showOnly =
        makeToolButton("showOnlyProblems", Glyph::problem, tr("Show only the items with problems"));
    showOnly->setIcon({});
    showOnly->setText(tr("Show Only These"));
    addButton(showOnly, *commands.showProblems);
    applyColours();
    hide();
}

void ProblemBar::addButton(QAbstractButton* button, QAction& command) {
    performs(*button, command);
    layout()->addWidget(button);
    buttons.push_back(button);
}

void ProblemBar::showCounts(std::size_t problems, std::size_t madeDistinct) {
    setVisible(problems > 0 || madeDistinct > 0);
    text->setText(problems > 0
                      ? counted(problems, tr("1 item cannot be renamed as shown."),
                                tr("%L1 items cannot be renamed as shown."))
                      : counted(madeDistinct,
                                tr("1 name was made distinct: it would have been the same as another."),
                                tr("%L1 names were made distinct: they would have been the same.")));
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
