#include "presentation/cards/Card.h"

#include "presentation/Buttons.h"
#include "presentation/PaletteWatch.h"
#include "presentation/WindowColours.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <utility>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds deafTime(300);
constexpr std::chrono::milliseconds lingerTime(150);
constexpr double radius = 8;
constexpr int sidePadding = 20;
constexpr int endPadding = 18;

QAccessibleInterface* dialogOf(const QString& className, QObject* object) {
    auto* card = className == "tavrin::Card" ? qobject_cast<Card*>(object) : nullptr;
    return card ? new QAccessibleWidget(card, QAccessible::Dialog) : nullptr;
}

QLabel* plainLabel(const char* name) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

void scaleFont(QLabel& label, double factor) {
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() * factor);
    label.setFont(font);
}

bool isInput(QEvent::Type type) {
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return true;
    default:
        return false;
    }
}

bool isAnsweringKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space || key == Qt::Key_Escape;
}

} // namespace

Card* Card::open(QWidget& over, const CardContent& content, Handler handler) {
    auto* card = new Card(over);
    card->fill(content, nullptr, std::move(handler));
    return card;
}

Card::Card(QWidget& over, bool staysForNext)
    : QFrame(new CardLayer(over)), layer(static_cast<CardLayer*>(parentWidget())),
      focusBefore(over.window()->focusWidget()), lingers(staysForNext), head(plainLabel("cardHead")),
      bodyArea(new QScrollArea), buttonRow(new QHBoxLayout), escapeHint(plainLabel("cardEscapeHint")),
      keysHint(plainLabel("cardKeysHint")) {
    static const bool isInstalled = [] {
        QAccessible::installFactory(dialogOf);
        return true;
    }();
    (void)isInstalled;
    for (QTimer* timer : {&deafness, &lingering})
        timer->setSingleShot(true);
    connect(&lingering, &QTimer::timeout, this, &Card::close);
    scaleFont(*head, 1.2);
    QFont strong = head->font();
    strong.setWeight(QFont::DemiBold);
    head->setFont(strong);
    bodyArea->setFrameShape(QFrame::NoFrame);
    bodyArea->setWidgetResizable(true);
    bodyArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    bodyArea->setFocusPolicy(Qt::NoFocus);
    auto* hints = new QHBoxLayout;
    for (QLabel* hint : {escapeHint, keysHint}) {
        scaleFont(*hint, 0.85);
        hint->setForegroundRole(QPalette::PlaceholderText);
        hints->addWidget(hint, hint == keysHint ? 1 : 0);
    }
    escapeHint->setWordWrap(false);
    keysHint->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(sidePadding, endPadding, sidePadding, endPadding);
    column->setSpacing(12);
    column->addWidget(head);
    column->addWidget(bodyArea);
    column->addLayout(buttonRow);
    column->addLayout(hints);
    applyColours();
    whenPaletteChanges(this, [this] { applyColours(); });
}

void Card::applyColours() {
    QPalette colours = QApplication::palette();
    colours.setColor(QPalette::Window, ground(colours));
    setPalette(colours);
}

QColor Card::ground(const QPalette& palette) {
    return palette.color(WindowColours::isOwn(QApplication::palette()) ? QPalette::ToolTipBase
                                                                       : QPalette::Window);
}

QColor Card::outline(const QPalette& palette) {
    QColor colour = palette.color(QPalette::PlaceholderText);
    colour.setAlphaF(0.6F);
    return colour;
}

void Card::fill(const CardContent& content, QWidget* body, Handler newHandler) {
    lingering.stop();
    shown = content;
    handler = std::move(newHandler);
    setObjectName(content.objectName);
    head->setText(content.head);
    head->setVisible(!content.head.isEmpty());
    setAccessibleDescription(content.spoken.isEmpty() ? content.text : content.spoken);
    setAccessibleName(content.head);
    if (!body && !content.text.isEmpty()) {
        QLabel* text = plainLabel("cardText");
        text->setText(content.text);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        body = text;
    }
    delete bodyArea->takeWidget();
    bodyArea->setVisible(body != nullptr);
    if (body) {
        bodyArea->setWidget(body);
        body->setAutoFillBackground(false);
        bodyArea->viewport()->setAutoFillBackground(false);
    }
    setButtons(content);
    setHints(content);
    listenTo(*this);
    deafness.start(deafTime);
    layer->place();
    layer->show();
    show();
    layer->raise();
    buttons[content.defaultButton]->setFocus();
    QAccessibleEvent opened(this, QAccessible::DialogStart);
    QAccessible::updateAccessibility(&opened);
}

void Card::setButtons(const CardContent& content) {
    const bool areThere =
        std::ranges::equal(buttons, content.buttons, [](const QPushButton* button, const CardButton& wanted) {
            return button->objectName() == wanted.objectName && button->text() == wanted.label;
        });
    if (areThere)
        return;
    while (QLayoutItem* item = buttonRow->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    buttons.clear();
    for (std::size_t i = 0; i < content.buttons.size(); ++i) {
        const bool isDefault = i == content.defaultButton;
        auto* button = isDefault ? new ProminentButton(content.buttons[i].label)
                                 : new QPushButton(content.buttons[i].label);
        button->setObjectName(content.buttons[i].objectName);
        button->setAutoDefault(false);
        button->setDefault(isDefault);
        connect(button, &QPushButton::clicked, this, [this, i] { answer(i); });
        buttonRow->addWidget(button);
        if (i == 0)
            buttonRow->addStretch(1);
        buttons.push_back(button);
    }
}

void Card::setHints(const CardContent& content) {
    QStringList others;
    escapeHint->clear();
    for (std::size_t i = content.buttons.size(); i-- > 0;) { // the default stands last, and is told first
        const CardButton& button = content.buttons[i];
        if (button.hint.isEmpty())
            continue;
        if (i == content.defaultButton)
            others.prepend(button.hint.arg(QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText)));
        else if (i == content.escapeButton)
            escapeHint->setText(
                button.hint.arg(QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText)));
        else
            others.append(
                button.hint.arg(QKeySequence::mnemonic(button.label).toString(QKeySequence::NativeText)));
    }
    keysHint->setText(others.join(" · "));
    for (QLabel* hint : {escapeHint, keysHint})
        hint->setVisible(!escapeHint->text().isEmpty() || !others.isEmpty());
}

void Card::listenTo(QWidget& widget) {
    for (QWidget* child : widget.findChildren<QWidget*>())
        child->installEventFilter(this);
}

void Card::setPlaces(CardLayer::Places places) { layer->setPlaces(std::move(places), shown.isFailure); }

int Card::fitTo(int width, int highest) {
    const auto heightOf = [](QWidget& widget, int available) {
        const int asked = widget.heightForWidth(available);
        return asked >= 0 ? asked : widget.sizeHint().height();
    };
    const int inner = width - 2 * sidePadding;
    if (QWidget* body = bodyArea->widget()) {
        body->setMaximumWidth(inner);
        bodyArea->setFixedHeight(0);
        const int rest = layout()->totalHeightForWidth(width);
        const int natural = std::max(heightOf(*body, inner), body->minimumSizeHint().height());
        bodyArea->setFixedHeight(std::clamp(highest - rest, 40, std::max(40, natural)));
    }
    return std::max(layout()->totalHeightForWidth(width), layout()->totalMinimumSize().height());
}

void Card::withdraw() {
    if (isAsking())
        std::exchange(handler, nullptr)(shown.escapeButton);
    close();
}

void Card::answer(std::size_t button) {
    if (!isAsking())
        return;
    const Handler give = std::exchange(handler, nullptr);
    if (lingers)
        lingering.start(lingerTime);
    else
        close();
    give(button);
}

void Card::close() {
    lingering.stop();
    handler = nullptr;
    layer->release();
    layer->deleteLater();
    if (focusBefore && focusBefore->isVisible() && focusBefore->isEnabled())
        focusBefore->setFocus();
    emit closed();
}

QList<Card*> Card::in(const QWidget& window) {
    QList<Card*> open;
    for (Card* card : window.findChildren<Card*>())
        if (card->isVisible() && card->window() == &window)
            open.append(card);
    return open;
}

bool Card::eventFilter(QObject* watched, QEvent* event) {
    if (isInput(event->type()) && (isDeaf() || !isAsking()))
        return true;
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->isAutoRepeat() && isAnsweringKey(key->key()))
            return true;
    }
    return QFrame::eventFilter(watched, event);
}

bool Card::focusNextPrevChild(bool next) {
    std::vector<QWidget*> stops;
    for (QWidget* widget : findChildren<QWidget*>())
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0)
            stops.push_back(widget);
    const auto now = std::ranges::find(stops, window()->focusWidget());
    if (stops.empty())
        return false;
    const auto count = static_cast<std::ptrdiff_t>(stops.size());
    const std::ptrdiff_t place = now == stops.end() ? (next ? -1 : 0) : now - stops.begin();
    stops[static_cast<std::size_t>((place + (next ? 1 : -1) + count) % count)]->setFocus(
        next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void Card::keyPressEvent(QKeyEvent* event) {
    if (isDeaf() || !isAsking() || event->isAutoRepeat())
        return;
    if (event->key() == Qt::Key_Escape) {
        answer(shown.escapeButton);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        const auto focused = std::ranges::find(buttons, window()->focusWidget());
        answer(focused == buttons.end() ? shown.defaultButton
                                        : static_cast<std::size_t>(focused - buttons.begin()));
    }
}

void Card::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(outline(palette()), 1));
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

} // namespace tavrin
