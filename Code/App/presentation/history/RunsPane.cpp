#include "presentation/history/RunsPane.h"

#include "platform/propertylists/UserDefaults.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QLocale>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int usualWidth = 312;
constexpr int leastWidth = 200;

} // namespace

RunsPane::RunsPane(UserDefaults& userDefaults)
    : defaults(userDefaults), model(new RunListModel(this)), found(new FoundListModel(this)),
      pages(new QStackedWidget) {
    setMaximumWidth(std::max(usualWidth, fontMetrics().averageCharWidth() * 40));
    setMinimumWidth(std::min(leastWidth, maximumWidth()));
    makeField();
    list = makeList("historyRuns", tr("Past renames"), model, new RunDelegate(this));
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, &RunsPane::chose);
    pages->addWidget(list);
    makeFound();
    makeFoot();
    auto* around = new QVBoxLayout;
    around->setContentsMargins(12, 12, 12, 8);
    around->addWidget(field);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(around);
    column->addWidget(pages, 1);
    column->addWidget(foot);
}

QListView* RunsPane::makeList(const char* name, const QString& spoken, QAbstractItemModel* itsModel,
                              QAbstractItemDelegate* delegate) {
    auto* view = new QListView;
    view->setObjectName(name);
    view->setAccessibleName(spoken);
    view->setModel(itsModel);
    view->setItemDelegate(delegate);
    view->setFrameShape(QFrame::NoFrame);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->viewport()->setAutoFillBackground(false);
    return view;
}

void RunsPane::makeField() {
    field = new QLineEdit;
    field->setObjectName("historyFind");
    field->setPlaceholderText(tr("Find a name in all runs"));
    field->setAccessibleName(field->placeholderText());
    field->setClearButtonEnabled(true);
    field->installEventFilter(this);
    connect(field, &QLineEdit::textChanged, this, [this] { search(); });
}

void RunsPane::makeFound() {
    hits = makeList("historyHits", tr("Names found"), found, new FoundDelegate(this));
    hits->installEventFilter(this);
    connect(hits, &QListView::clicked, this, [this](const QModelIndex& index) { chooseHit(index); });
    count = new QLabel;
    count->setObjectName("historyHitCount");
    count->setWordWrap(true);
    count->setContentsMargins(12, 0, 12, 4);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(count);
    column->addWidget(hits, 1);
    pages->addWidget(page);
}

void RunsPane::makeFoot() {
    foot = new QLabel;
    foot->setObjectName("historyKept");
    foot->setTextFormat(Qt::RichText);
    foot->setWordWrap(true);
    foot->setContentsMargins(12, 8, 12, 12);
    connect(foot, &QLabel::linkActivated, this, &RunsPane::preferencesRequested);
}

// --- Runs ---

const ShownRun* RunsPane::chosen() const { return model->runAt(list->currentIndex()); }

void RunsPane::setRuns(std::vector<ShownRun> newRuns, const std::string& name) {
    model->setRuns(std::move(newRuns));
    if (model->indexOf(name).isValid())
        choose(name);
    else
        emit chose();
    search();
}

void RunsPane::choose(const std::string& name) {
    const QModelIndex index = model->indexOf(name);
    list->setCurrentIndex(index);
    list->scrollTo(index);
}

void RunsPane::describeLimits() {
    const HistoryLimits limits = HistoryLimits::of(defaults);
    const QLocale locale;
    foot->setText({}); // a link takes its colour when it is set
    foot->setText(QString("<a href='history'>%1</a>")
                      .arg(tr("Kept for %1 days, at most %2 runs.")
                               .arg(locale.toString(limits.days), locale.toString(limits.runs))));
}

void RunsPane::applyColours() {
    describeLimits();
    QPalette ground = QApplication::palette();
    ground.setColor(QPalette::Base, ground.color(QPalette::Window));
    for (QListView* view : {list, hits}) {
        if (view->palette() != ground)
            view->setPalette(ground);
    }
}

void RunsPane::takeFocus() { (isSearching() ? static_cast<QWidget*>(field) : list)->setFocus(); }

// --- The search ---

bool RunsPane::isSearching() const { return !field->text().isEmpty(); }

void RunsPane::endSearch() { field->clear(); }

void RunsPane::search() {
    searching.cancel();
    if (!isSearching()) {
        pages->setCurrentIndex(0);
        found->setFound({});
        return;
    }
    searching.start(
        [runs = model->runs(), text = field->text()](const LatestWork::Unwanted& isUnwanted) {
            return NamesFound::find(runs, text, [&isUnwanted] { return isUnwanted.load(); });
        },
        [this](NamesFound names) { show(std::move(names)); });
}

void RunsPane::show(NamesFound names) {
    const int number = static_cast<int>(names.hits.size());
    count->setText(number == 0     ? tr("No run has this name.")
                   : names.hasMore ? tr("The first name found||The first %Ln names found", nullptr, number)
                                   : tr("1 name found||%Ln names found", nullptr, number));
    found->setFound(std::move(names));
    hits->setCurrentIndex(found->index(number == 0 ? -1 : 1));
    pages->setCurrentIndex(1);
}

void RunsPane::chooseHit(const QModelIndex& index) {
    if (const NamesFound::Hit* hit = found->hitAt(index))
        emit hitChosen(*hit, found->found().runs[hit->run].run.name, field->text());
}

bool RunsPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !isSearching())
        return QWidget::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        chooseHit(hits->currentIndex());
        return true;
    case Qt::Key_Escape:
        endSearch();
        takeFocus();
        return true;
    case Qt::Key_Down:
        if (watched != field)
            break;
        hits->setFocus();
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tavrin
