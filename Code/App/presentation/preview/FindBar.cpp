#include "presentation/preview/FindBar.h"

#include "presentation/QtText.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QToolButton>

namespace tavrin {

namespace {

constexpr int rowsPerSlice = 1024;

} // namespace

FindBar::FindBar(QTableView& table, PreviewTableModel& shownModel)
    : view(table), model(shownModel), field(new QLineEdit), result(new QLabel) {
    setObjectName("findBar");
    field->setObjectName("findField");
    field->setAccessibleName(tr("Find in the list"));
    field->setPlaceholderText(tr("Find in current and new names"));
    field->setClearButtonEnabled(true);
    result->setObjectName("findResult");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 0, 12, 8);
    layout->addWidget(field, 1);
    layout->addWidget(result);
    const auto addButton = [&](const char* text, const QString& tip, auto&& effect) {
        auto* button = new QToolButton;
        button->setText(QString::fromUtf8(text));
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        connect(button, &QToolButton::clicked, this, effect);
        layout->addWidget(button);
    };
    addButton("↑", tr("Previous match"), [this] { goToMatch(false, false); });
    addButton("↓", tr("Next match"), [this] { goToMatch(true, false); });
    addButton("✕", tr("Close"), [this] { close(); });
    connect(field, &QLineEdit::textEdited, this, [this] { goToMatch(true, true); });
    connect(field, &QLineEdit::returnPressed, this, [this] { goToMatch(true, false); });
    slices.setObjectName("find");
    slices.setInterval(0);
    connect(&slices, &QTimer::timeout, this, [this] { lookOn(); });
    hide();
}

void FindBar::open() {
    show();
    field->setFocus(Qt::ShortcutFocusReason);
    field->selectAll();
}

void FindBar::close() {
    slices.stop();
    hide();
    view.setFocus();
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void FindBar::goToMatch(bool forward, bool fromHere) {
    const int count = model.rowCount();
    slices.stop();
    result->clear();
    wanted = field->text();
    if (wanted.isEmpty() || count == 0)
        return;
    const int current = view.currentIndex().isValid() ? view.currentIndex().row() : forward ? -1 : count;
    start = fromHere ? std::max(0, current) : current + (forward ? 1 : -1);
    step = 0;
    isForward = forward;
    lookOn();
}

void FindBar::lookOn() {
    const int count = model.rowCount();
    const int end = std::min(count, step + rowsPerSlice);
    for (; step < end; ++step) {
        const int row = (((isForward ? start + step : start - step) % count) + count) % count;
        const PreviewList::Row& item = model.rowAt(row);
        if (toQString(item.name).contains(wanted, Qt::CaseInsensitive) ||
            toQString(item.finalName).contains(wanted, Qt::CaseInsensitive)) {
            goTo(row);
            return;
        }
    }
    if (step < count) {
        slices.start();
        return;
    }
    slices.stop();
    result->setText(tr("Not found"));
}

void FindBar::goTo(int row) {
    slices.stop();
    view.setCurrentIndex(model.index(row, PreviewTableModel::currentName));
    view.scrollTo(view.currentIndex(), QAbstractItemView::PositionAtCenter);
}

} // namespace tavrin
