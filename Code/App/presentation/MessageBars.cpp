#include "presentation/MessageBars.h"

#include "presentation/Buttons.h"
#include "presentation/FlowLayout.h"
#include "presentation/GlyphIcon.h"
#include "presentation/Spoken.h"
#include "presentation/WindowColours.h"

#include <QEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int symbolSize = 16;
constexpr int gap = 8;

struct Look {
    Glyph glyph;
    QColor tint;
    QColor words;
};

Look lookOf(BarMessage::Kind kind, const WindowColours& colours) {
    switch (kind) {
    case BarMessage::Kind::done:
        return {Glyph::check, colours.addedTint, colours.addedText};
    case BarMessage::Kind::hint:
        return {Glyph::info, colours.infoTint, colours.infoText};
    case BarMessage::Kind::warning:
        return {Glyph::problem, colours.warningTint, colours.warningText};
    case BarMessage::Kind::failure:
        break;
    }
    return {Glyph::problem, colours.errorTint, colours.errorText};
}

QString htmlOf(const QString& bold, const QString& plain) {
    const QString head = "<b>" + bold.toHtmlEscaped() + "</b>";
    return plain.isEmpty() ? head : head + " &nbsp;" + plain.toHtmlEscaped();
}

} // namespace

// --- One bar ---

MessageBar::MessageBar()
    : symbol(new QLabel), text(new QLabel), buttonRow(new QWidget),
      cross(makeToolButton("closeMessage", Glyph::close, tr("Close this message"))) {
    Spoken::playNotification(staticMetaObject.className());
    setAutoFillBackground(true);
    symbol->setFixedSize(symbolSize, symbolSize);
    text->setObjectName("messageText");
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    buttonRow->setLayout(new FlowLayout(gap));
    cross->setFocusPolicy(Qt::TabFocus);
    connect(cross, &QToolButton::clicked, this, &MessageBar::closed);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(12, 4, 12, 4);
    grid->setHorizontalSpacing(gap);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->addWidget(symbol, 0, 0);
    grid->addWidget(text, 0, 1);
    grid->addWidget(buttonRow, 0, 2);
    grid->addWidget(cross, 0, 3);
    hide();
}

void MessageBar::present(const BarMessage& message) {
    setObjectName(message.objectName);
    kind = message.kind;
    cross->setVisible(!message.isLasting);
    makeButtons(message.buttons);
    setTexts(message.bold, message.plain);
    applyColours();
    show();
}

void MessageBar::setTexts(const QString& bold, const QString& plain) {
    text->setText(htmlOf(bold, plain));
    setAccessibleName(plain.isEmpty() ? bold : bold + ' ' + plain);
    arrange();
}

QString MessageBar::words() const { return accessibleName(); }

void MessageBar::makeButtons(const std::vector<BarMessage::Button>& buttons) {
    // One of them may be the caller.
    for (QPushButton* old : buttonRow->findChildren<QPushButton*>()) {
        buttonRow->layout()->removeWidget(old);
        old->hide();
        old->setObjectName({});
        old->deleteLater();
    }
    for (const BarMessage::Button& each : buttons) {
        auto* button = new QPushButton(each.label);
        button->setObjectName(each.objectName);
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::TabFocus);
        if (each.label.size() == 1) // an arrow
            button->setFixedWidth(2 * button->fontMetrics().height());
        if (!each.tip.isEmpty()) {
            button->setToolTip(each.tip);
            button->setAccessibleName(each.tip);
        }
        connect(button, &QPushButton::clicked, this, [effect = each.effect] { effect(); });
        buttonRow->layout()->addWidget(button);
        button->show();
    }
    buttonRow->setVisible(!buttons.empty());
}

/// Beside the words if all of them stand in one line then, else below them.
void MessageBar::arrange() {
    auto* grid = static_cast<QGridLayout*>(layout());
    const QMargins margins = grid->contentsMargins();
    const int room = width() - margins.left() - margins.right() - symbolSize - gap -
                     (cross->isHidden() ? 0 : cross->sizeHint().width() + gap);
    QLabel measured;
    measured.setFont(text->font());
    measured.setTextFormat(Qt::RichText);
    measured.setText(text->text());
    const bool fits = measured.sizeHint().width() + gap + buttonRow->sizeHint().width() <= room;
    if (fits == isInOneLine)
        return;
    isInOneLine = fits;
    grid->removeWidget(buttonRow);
    if (fits)
        grid->addWidget(buttonRow, 0, 2);
    else
        grid->addWidget(buttonRow, 1, 1, 1, 3);
}

void MessageBar::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    arrange();
}

void MessageBar::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        arrange();
}

bool MessageBar::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) // which changeEvent() is not told of
        applyColours();
    return QFrame::event(event);
}

void MessageBar::applyColours() {
    // The bar's own palette is tinted, so it does not tell what the desktop's has become.
    const QPalette common = QGuiApplication::palette();
    const Look look = lookOf(kind, WindowColours::of(common));
    QPalette tinted;
    tinted.setColor(QPalette::Window, look.tint);
    tinted.setColor(QPalette::WindowText, look.words);
    setPalette(tinted);
    buttonRow->setPalette(common); // buttons look as they do elsewhere
    QPixmap picture(symbol->size() * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    GlyphIcon::paint(painter, symbol->rect(), look.glyph, look.words);
    painter.end();
    symbol->setPixmap(picture);
}

// --- Both ---

MessageBars::MessageBars() : bar(new MessageBar), problems(new MessageBar) {
    setObjectName("messageBars");
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(problems);
    connect(bar, &MessageBar::closed, this, [this] {
        const BarMessage gone = messages.back();
        messages.pop_back();
        showNewest();
        if (gone.closed)
            gone.closed();
    });
    connect(problems, &MessageBar::closed, problems, &QWidget::hide);
}

void MessageBars::present(BarMessage message) {
    std::erase_if(messages, [&](const BarMessage& each) { return each.objectName == message.objectName; });
    messages.push_back(std::move(message));
    const bool comesUp = !bar->isVisible();
    showNewest();
    if (!comesUp) // else Qt has told it
        Spoken::tellShown(*bar);
    Spoken::note(bar->words());
}

void MessageBars::dismiss(const QString& objectName) {
    const bool isOnShow = isShowing(objectName);
    std::erase_if(messages, [&](const BarMessage& each) { return each.objectName == objectName; });
    if (isOnShow)
        showNewest();
}

bool MessageBars::isShowing(const QString& objectName) const {
    return !messages.empty() && messages.back().objectName == objectName;
}

void MessageBars::showNewest() {
    if (messages.empty())
        bar->hide();
    else
        bar->present(messages.back());
    emit changed();
}

void MessageBars::showProblems(const BarMessage& message) { problems->present(message); }

} // namespace tavrin
