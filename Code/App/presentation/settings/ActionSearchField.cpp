#include "presentation/settings/ActionSearchField.h"

#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"

#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t mostHits = 12;
constexpr int menuIndexRole = Qt::UserRole;
constexpr int categoryRole = Qt::UserRole + 1;
constexpr int exampleRole = Qt::UserRole + 2;
constexpr int typedRole = Qt::UserRole + 3;
constexpr int margin = 6;

/// A hit in two lines: the label with its category at the right, and an example.
class HitDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {option.rect.width(), 2 * option.fontMetrics.lineSpacing() + margin};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        if (isSelected)
            painter->fillRect(option.rect, option.palette.highlight());
        const QColor text = option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
        QColor dim = isSelected ? text : option.palette.color(QPalette::PlaceholderText);
        const QRect inner = option.rect.adjusted(margin, margin / 2, -margin, -margin / 2);
        const QRect upper = inner.adjusted(0, 0, 0, -inner.height() / 2);
        const QRect lower = inner.adjusted(0, inner.height() / 2, 0, 0);
        const QString category = index.data(categoryRole).toString();
        const int categoryWidth = option.fontMetrics.horizontalAdvance(category);
        painter->setPen(dim);
        painter->drawText(upper, Qt::AlignRight | Qt::AlignVCenter, category);
        painter->drawText(
            lower, Qt::AlignLeft | Qt::AlignVCenter,
            option.fontMetrics.elidedText(index.data(exampleRole).toString(), Qt::ElideRight, lower.width()));
        painter->setPen(text);
        drawLabel(*painter, upper.adjusted(0, 0, -categoryWidth - 2 * margin, 0), option.font,
                  index.data().toString(), index.data(typedRole).toString());
    }

  private:
    /// The letters that were typed stand out.
    static void drawLabel(QPainter& painter, const QRect& place, const QFont& plain, const QString& label,
                          const QString& typed) {
        QList<QTextLayout::FormatRange> marks;
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        for (const QString& word : typed.split(' ', Qt::SkipEmptyParts)) {
            // Where it begins a word, if it does.
            const auto start = (' ' + label).indexOf(' ' + word, 0, Qt::CaseInsensitive);
            const auto found = start >= 0 ? start : label.indexOf(word, 0, Qt::CaseInsensitive);
            if (found >= 0)
                marks.append({static_cast<int>(found), static_cast<int>(word.size()), bold});
        }
        QTextLayout layout(QFontMetrics(plain).elidedText(label, Qt::ElideRight, place.width()), plain);
        layout.setFormats(marks);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        line.setLineWidth(place.width());
        layout.endLayout();
        layout.draw(&painter, QPointF(place.left(), place.top() + (place.height() - line.height()) / 2));
    }
};

} // namespace

ActionSearchField::ActionSearchField(const ActionList& list) : catalogue(list), hits(new QListWidget(this)) {
    setObjectName("findAction");
    setPlaceholderText(tr("Find an action (Ctrl+K)"));
    addAction(GlyphIcon::of(Glyph::search, QPalette::PlaceholderText), QLineEdit::LeadingPosition);
    setAccessibleName(tr("Find an action"));
    setClearButtonEnabled(true);
    hits->setObjectName("actionHits");
    hits->setAccessibleName(tr("Actions found"));
    hits->setWindowFlags(Qt::ToolTip);
    hits->setFocusPolicy(Qt::NoFocus);
    hits->setFocusProxy(this);
    hits->setUniformItemSizes(true);
    hits->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    hits->setItemDelegate(new HitDelegate(hits));
    hits->hide();
    connect(this, &QLineEdit::textEdited, this, [this] { showHits(); });
    connect(hits, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { take(hits->row(item)); });
}

void ActionSearchField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::ShortcutFocusReason) {
        selectAll();
        showHits();
    }
}

void ActionSearchField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    hideHits();
}

void ActionSearchField::keyPressEvent(QKeyEvent* event) {
    const int last = hits->count() - 1;
    switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (!hits->isVisible())
            showHits();
        else
            hits->setCurrentRow(
                std::clamp(hits->currentRow() + (event->key() == Qt::Key_Down ? 1 : -1), 0, last));
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (hits->isVisible() && hits->currentRow() >= 0)
            take(hits->currentRow());
        return;
    case Qt::Key_Escape:
        hideHits();
        clear();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void ActionSearchField::showHits() {
    if (!search)
        search.emplace(catalogue);
    hits->clear();
    const auto limit = text().trimmed().isEmpty() ? std::size_t{200} : mostHits;
    for (const ActionSearch::Hit& hit : search->find(fromQString(text()), limit)) {
        auto* item = new QListWidgetItem(toQString(hit.label), hits);
        item->setData(menuIndexRole, hit.menuIndex);
        item->setData(categoryRole, toQString(hit.category));
        item->setData(exampleRole, toQString(hit.example));
        item->setData(typedRole, text());
    }
    hits->setCurrentRow(0);
    setAccessibleDescription(
        tr("1 action found||%Ln actions found", nullptr, static_cast<int>(hits->count())));
    Spoken::sayAtRest(text().trimmed().isEmpty() ? QString() : accessibleDescription());
    if (hits->count() == 0) {
        hideHits();
        return;
    }
    const int rowHeight = 2 * fontMetrics().lineSpacing() + margin;
    const int rows = std::min(hits->count(), static_cast<int>(mostHits));
    hits->resize(std::max(width(), 420), rows * rowHeight + 2 * hits->frameWidth());
    hits->move(mapToGlobal(QPoint(0, height() + 2)));
    hits->show();
}

void ActionSearchField::hideHits() { hits->hide(); }

void ActionSearchField::take(int row) {
    const int menuIndex = hits->item(row)->data(menuIndexRole).toInt();
    hideHits();
    clear();
    emit found(menuIndex);
}

} // namespace tavrin
