#include "presentation/preview/FindBar.h"

#include "engine/pipeline/RenameEngine.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewTableModel.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/StoreError.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>
#include <QToolButton>
#include <algorithm>
#include <numeric>

namespace tavrin {

namespace {

constexpr std::size_t rowsBetweenReports = 50000;

/// The places, among these rows, of those whose present or new name holds the text. Goes through the rows in
/// the order in which they are stored and tells what it has found from time to time; false from `report` ends
/// it.
std::vector<int> placesHolding(StoreContext& context, const std::vector<RowId>& ids, const QString& wanted,
                               const std::function<bool(const std::vector<int>&)>& report) {
    std::vector<int> byId(ids.size());
    std::iota(byId.begin(), byId.end(), 0);
    const auto idAt = [&](int place) { return ids[static_cast<std::size_t>(place)]; };
    std::ranges::sort(byId, {}, idAt);
    std::vector<int> places;
    std::u16string name;
    for (std::size_t i = 0; i < byId.size(); ++i) {
        const RowId id = idAt(byId[i]);
        if (i % rowsBetweenReports == rowsBetweenReports - 1 && !report(places))
            return {};
        if (!context.exists(id))
            continue;
        context.name(id, name);
        bool holds = toQString(name).contains(wanted, Qt::CaseInsensitive);
        if (!holds) {
            context.finalName(id, name);
            holds = toQString(name).contains(wanted, Qt::CaseInsensitive);
        }
        if (holds)
            places.push_back(byId[i]);
    }
    std::ranges::sort(places);
    return places;
}

} // namespace

FindBar::FindBar(QTableView& table, PreviewTableModel& shownModel, RenameEngine& runner)
    : view(table), model(shownModel), engine(runner), field(new QLineEdit), result(new QLabel) {
    setObjectName("findBar");
    whenPaletteChanges(this, [this] { applyColours(); });
    field->setObjectName("findField");
    field->setAccessibleName(tr("Find in the list"));
    field->setPlaceholderText(tr("Find in current and new names"));
    field->setClearButtonEnabled(true);
    field->installEventFilter(this);
    auto* label = new QLabel(tr("Find:"));
    label->setBuddy(field);
    result->setObjectName("findResult");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 0, 12, 8);
    layout->addWidget(label);
    layout->addWidget(field, 2);
    layout->addWidget(result);
    const auto addButton = [&](const char* name, Glyph glyph, const QString& tip, auto&& effect) {
        QToolButton* button = makeToolButton(name, glyph, tip);
        button->setFocusPolicy(Qt::TabFocus);
        connect(button, &QToolButton::clicked, this, effect);
        layout->addWidget(button);
    };
    addButton("findPreviousButton", Glyph::up, tr("Previous match (Shift+F3)"), [this] { goOn(false); });
    addButton("findNextButton", Glyph::down, tr("Next match (F3)"), [this] { goOn(true); });
    layout->addStretch(1);
    addButton("closeFindButton", Glyph::close, tr("Close"), [this] { close(); });
    connect(field, &QLineEdit::textEdited, this, [this] { look(Aim{true, true}); });
    connect(view.selectionModel(), &QItemSelectionModel::currentRowChanged, this, &FindBar::tell);
    // Names or rows are others.
    connect(&model, &QAbstractItemModel::modelReset, this, [this] { look(std::nullopt); });
    connect(&model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
                if (roles.isEmpty())
                    look(std::nullopt);
            });
    hide();
}

FindBar::~FindBar() { stop(); }

void FindBar::open() {
    show();
    field->setFocus(Qt::ShortcutFocusReason);
    field->selectAll();
    look(std::nullopt);
}

void FindBar::close() {
    stop();
    hide();
    emit matchesChanged({});
    view.setFocus();
}

void FindBar::stop() {
    if (search)
        search->isGivenUp = true;
    search.reset();
}

bool FindBar::isLooking() const { return !isHidden() && !field->text().isEmpty(); }

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (isReturn && (key->modifiers() & ~Qt::KeypadModifier & ~Qt::ShiftModifier) == 0) {
            goOn(!key->modifiers().testFlag(Qt::ShiftModifier));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FindBar::goOn(bool forward) {
    if (!isLooking()) {
        open();
        return;
    }
    aim = Aim{forward, false};
    follow();
}

/// Looks for the text anew.
void FindBar::look(std::optional<Aim> next) {
    stop();
    matches.clear();
    emit matchesChanged({});
    areAll = true;
    if (next || !isLooking())
        aim = next;
    if (isLooking() && model.rowCount() > 0) {
        areAll = false;
        search = std::make_shared<Search>();
        // To the main thread, and only there, and while it is still asked for.
        const auto tellBar = [bar = QPointer(this), mine = search](std::vector<int> rows, bool isAll) {
            if (!mine->isGivenUp && bar)
                bar->found(std::move(rows), isAll);
        };
        engine.readRows([mine = search, ids = model.rowIds(), wanted = field->text(),
                         tellBar](StoreContext& context) -> std::function<void()> {
            std::vector<int> rows;
            try {
                rows = placesHolding(context, ids, wanted, [&](const std::vector<int>& some) {
                    std::vector<int> sorted = some;
                    std::ranges::sort(sorted);
                    QMetaObject::invokeMethod(
                        qApp, [tellBar, sorted = std::move(sorted)] { tellBar(sorted, false); },
                        Qt::QueuedConnection);
                    return !mine->isGivenUp;
                });
            } catch (const StoreError&) {
                rows.clear(); // what can't be read holds nothing
            }
            return [tellBar, rows = std::move(rows)]() mutable { tellBar(std::move(rows), true); };
        });
    }
    tell();
}

void FindBar::found(std::vector<int> rows, bool isAll) {
    matches = std::move(rows);
    areAll = isAll;
    emit matchesChanged(matches);
    if (areAll)
        follow();
    tell();
}

/// Goes where the aim leads, if all matches are known.
void FindBar::follow() {
    if (!aim || !areAll)
        return;
    const Aim next = *aim;
    aim.reset();
    if (matches.empty())
        return;
    const int current = view.currentIndex().isValid() ? view.currentIndex().row() : -1;
    int row = 0;
    if (next.isForward) {
        const auto after = next.mayStay ? std::ranges::lower_bound(matches, current)
                                        : std::ranges::upper_bound(matches, current);
        row = after == matches.end() ? matches.front() : *after;
    } else {
        const auto here = std::ranges::lower_bound(matches, current);
        row = here == matches.begin() ? matches.back() : *(here - 1);
    }
    view.setCurrentIndex(model.index(row, PreviewTableModel::currentName));
    view.scrollTo(view.currentIndex(), QAbstractItemView::PositionAtCenter);
}

void FindBar::applyColours() {
    QPalette colours;
    if (isInVain())
        colours.setColor(QPalette::WindowText, WindowColours::of(QApplication::palette()).errorMark);
    result->setPalette(colours);
}

bool FindBar::isInVain() const { return isLooking() && matches.empty() && areAll; }

void FindBar::tell() {
    result->clear();
    if (isInVain()) {
        result->setText(tr("No match"));
    } else if (isLooking()) {
        const int current = view.currentIndex().isValid() ? view.currentIndex().row() : -1;
        const auto here = std::ranges::lower_bound(matches, current);
        const bool isOnMatch = here != matches.end() && *here == current;
        const auto count = static_cast<qulonglong>(matches.size());
        const auto place = static_cast<qulonglong>(here - matches.begin() + 1);
        if (isOnMatch)
            //: The place of a match among all; the second form while they are still being counted.
            result->setText(areAll ? tr("%L1 of %L2").arg(place).arg(count)
                                   : tr("%L1 of %L2…").arg(place).arg(count));
        else
            result->setText(areAll ? tr("1 match||%Ln matches", nullptr, static_cast<int>(matches.size()))
                                   : tr("1 match…||%Ln matches…", nullptr, static_cast<int>(matches.size())));
    }
    applyColours();
    if (result->accessibleName() != result->text())
        Spoken::sayAtRest(result->text());
    result->setAccessibleName(result->text());
}

} // namespace tavrin
