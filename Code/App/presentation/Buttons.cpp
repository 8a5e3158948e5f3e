#include "presentation/Buttons.h"

#include "presentation/GlyphIcon.h"
#include "presentation/PaletteWatch.h"
#include "presentation/WindowColours.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int padding = 8;
constexpr int gap = 5;
constexpr double radius = 4;

} // namespace

void performs(QAbstractButton& button, QAction& command) {
    QObject::connect(&button, &QAbstractButton::clicked, &command, &QAction::trigger);
    QObject::connect(&command, &QAction::enabledChanged, &button, &QWidget::setEnabled);
    button.setEnabled(command.isEnabled());
}

QToolButton* makeToolButton(const QString& objectName, Glyph glyph, const QString& tip) {
    auto* button = new QToolButton;
    button->setObjectName(objectName);
    button->setIcon(GlyphIcon::of(glyph));
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    button->setAutoRaise(true);
    return button;
}

void MenuButton::initStyleOption(QStyleOptionToolButton* option) const {
    QToolButton::initStyleOption(option);
    option->features.setFlag(QStyleOptionToolButton::HasMenu, false);
}

ProminentButton::ProminentButton(const QString& label) : QPushButton(label) {
    applyColours();
    whenPaletteChanges(this, [this] { applyColours(); });
}

void ProminentButton::applyColours() {
    const QPalette common = QApplication::palette();
    QPalette own;
    if (WindowColours::isOwn(common)) {
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            own.setColor(group, QPalette::Button, common.color(QPalette::Highlight));
            own.setColor(group, QPalette::ButtonText, common.color(QPalette::HighlightedText));
        }
    }
    setPalette(own);
}

ToggleButton::ToggleButton(const QString& label, Glyph glyph) {
    setText(label);
    setIcon(GlyphIcon::of(glyph));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize ToggleButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int label =
        toolButtonStyle() == Qt::ToolButtonIconOnly ? 0 : gap + metrics.horizontalAdvance(text());
    return {iconSize().width() + label + 2 * padding,
            std::max(metrics.height(), iconSize().height()) + padding};
}

QSize ToggleButton::minimumSizeHint() const {
    return {iconSize().width() + 2 * padding, sizeHint().height()};
}

void ToggleButton::paintGround(QPainter& painter, const QRect& place, const QWidget& button, bool isChosen) {
    const QPalette palette = button.palette();
    const bool isFocused = button.hasFocus();
    const bool isUnderMouse = button.underMouse() && button.isEnabled();
    QColor frame = isChosen || isFocused ? WindowColours::accentOf(palette) : palette.color(QPalette::Mid);
    if (!button.isEnabled())
        frame = palette.color(QPalette::Mid);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(frame, isFocused ? 2 : 1));
    painter.setBrush(isChosen       ? WindowColours::chosenGround(palette)
                     : isUnderMouse ? palette.color(QPalette::Midlight)
                                    : QColor(Qt::transparent));
    painter.drawRoundedRect(QRectF(place).adjusted(1, 1, -1, -1), radius, radius);
}

void ToggleButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.save();
    paintGround(painter, rect(), *this, isChecked());
    painter.restore();
    const QRect inner = rect().adjusted(padding, 0, -padding, 0);
    const bool hasRoom = toolButtonStyle() != Qt::ToolButtonIconOnly && width() >= sizeHint().width();
    const QRect picture(hasRoom ? inner.left() : (width() - iconSize().width()) / 2,
                        (height() - iconSize().height()) / 2, iconSize().width(), iconSize().height());
    const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    icon().paint(&painter, QStyle::visualRect(layoutDirection(), inner, picture), Qt::AlignCenter, mode);
    if (!hasRoom)
        return;
    const QRect label = inner.adjusted(iconSize().width() + gap, 0, 0, 0);
    style()->drawItemText(&painter, QStyle::visualRect(layoutDirection(), inner, label),
                          Qt::AlignCenter | Qt::TextShowMnemonic, palette(), isEnabled(), text(),
                          QPalette::ButtonText);
}

} // namespace tavrin
