#include "presentation/steps/RecipeLine.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>

namespace tavrin {

namespace {

/// More than any window shows; to measure all of a long recipe would take its time.
constexpr int mostShown = 1000;
constexpr int padding = 6;

} // namespace

RecipeLine::RecipeLine() {
    setObjectName("recipeLine");
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleDescription(tr("Copies the recipe"));
    connect(this, &QAbstractButton::clicked, this, &RecipeLine::copy);
}

void RecipeLine::setRecipe(const QString& newRecipe) {
    if (recipe == newRecipe)
        return;
    recipe = newRecipe;
    setAccessibleName(tr("Recipe, %1").arg(recipe));
    const QString shown = recipe.size() > mostShown ? recipe.left(mostShown) + "…" : recipe;
    setToolTip(tr("%1<br>Click to copy it.").arg(shown.toHtmlEscaped()));
    update();
}

QSize RecipeLine::sizeHint() const { return {0, fontMetrics().height() + padding}; }

void RecipeLine::copy() {
    QGuiApplication::clipboard()->setText(recipe);
    //: Tells, for a moment, that a text is on the clipboard now.
    QToolTip::showText(mapToGlobal(QPoint(padding, 0)), tr("Copied"), this);
}

void RecipeLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect place = rect().adjusted(padding, 0, -padding, 0);
    painter.setPen(palette().color(underMouse() ? QPalette::WindowText : QPalette::PlaceholderText));
    // A recipe reads from left to right in every language.
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     fontMetrics().elidedText(recipe.left(mostShown), Qt::ElideRight, place.width()));
    if (!hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.backgroundColor = palette().color(QPalette::Window);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

} // namespace tavrin
