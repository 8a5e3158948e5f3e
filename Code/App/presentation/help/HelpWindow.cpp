#include "presentation/help/HelpWindow.h"

#include "presentation/QtText.h"
#include "presentation/help/HelpPages.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>
#include <optional>
#include <utility>
#include <vector>

namespace tavrin {

namespace {

constexpr int pageRole = Qt::UserRole;

struct Place {
    std::size_t page = 0;
    QString anchor = {};
    bool operator==(const Place&) const = default;
};

} // namespace

struct HelpWindow::Parts {
    HelpPages pages;
    std::vector<Place> history; ///< the present place is the one at `current`
    std::size_t current = 0;
    std::optional<std::size_t> pageShown;
    QToolButton* backButton = new QToolButton;
    QToolButton* forwardButton = new QToolButton;
    QLineEdit* filter = new QLineEdit;
    QListWidget* contents = new QListWidget;
    QTextBrowser* browser = new QTextBrowser;

    void applyFilter();
    void show(const Place& place);
    /// Shows another place and keeps the way back.
    void goTo(Place place);
    void goBy(std::ptrdiff_t steps);
    QWidget* buildBar(HelpWindow& window);
};

void HelpWindow::Parts::applyFilter() {
    for (int row = 0; row < contents->count(); ++row) {
        const auto page = contents->item(row)->data(pageRole).toULongLong();
        contents->item(row)->setHidden(!pages.contains(page, filter->text()));
    }
}

void HelpWindow::Parts::show(const Place& place) {
    if (std::exchange(pageShown, place.page) != place.page)
        browser->setHtml(pages.html(place.page));
    if (place.anchor.isEmpty())
        browser->verticalScrollBar()->setValue(0);
    else
        browser->scrollToAnchor(place.anchor);
    const QSignalBlocker blocker(contents);
    contents->setCurrentRow(static_cast<int>(place.page));
    backButton->setEnabled(current > 0);
    forwardButton->setEnabled(current + 1 < history.size());
}

void HelpWindow::Parts::goTo(Place place) {
    if (history.empty() || history[current] != place) {
        if (!history.empty())
            history.resize(++current);
        history.push_back(std::move(place));
    }
    show(history[current]);
}

void HelpWindow::Parts::goBy(std::ptrdiff_t steps) {
    const auto wanted = static_cast<std::ptrdiff_t>(current) + steps;
    if (wanted < 0 || wanted >= std::ssize(history))
        return;
    current = static_cast<std::size_t>(wanted);
    show(history[current]);
}

QWidget* HelpWindow::Parts::buildBar(HelpWindow& window) {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    const auto prepare = [&](QToolButton* button, const char* name, const char* text, Qt::ArrowType arrow,
                             QKeySequence::StandardKey keys, int steps) {
        button->setObjectName(name);
        button->setArrowType(arrow);
        button->setAutoRaise(true);
        button->setAccessibleName(text);
        button->setToolTip(
            QString("%1 (%2)").arg(text, QKeySequence(keys).toString(QKeySequence::NativeText)));
        auto* action = new QAction(&window);
        action->setShortcuts(keys);
        window.addAction(action);
        const auto go = [this, steps] { goBy(steps); };
        connect(button, &QToolButton::clicked, &window, go);
        connect(action, &QAction::triggered, &window, go);
        layout->addWidget(button);
    };
    prepare(backButton, "helpBack", "Back", Qt::LeftArrow, QKeySequence::Back, -1);
    prepare(forwardButton, "helpForward", "Forward", Qt::RightArrow, QKeySequence::Forward, 1);
    layout->addWidget(filter, 1);
    return bar;
}

HelpWindow::HelpWindow() : parts(std::make_unique<Parts>()) {
    setObjectName("helpWindow");
    setWindowTitle("Tavrin Help");
    resize(860, 600);
    parts->filter->setObjectName("helpFilter");
    parts->filter->setPlaceholderText("Search");
    parts->filter->setClearButtonEnabled(true);
    parts->contents->setObjectName("helpContents");
    parts->contents->setAccessibleName("Contents");
    parts->contents->setSpacing(2);
    parts->contents->setFrameShape(QFrame::NoFrame);
    parts->browser->setObjectName("helpBrowser");
    parts->browser->setOpenLinks(false);
    parts->browser->setFrameShape(QFrame::NoFrame);
    parts->browser->document()->setDocumentMargin(20);
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(8, 8, 0, 8);
    leftLayout->addWidget(parts->buildBar(*this));
    leftLayout->addWidget(parts->contents, 1);
    auto* splitter = new QSplitter;
    splitter->addWidget(left);
    splitter->addWidget(parts->browser);
    splitter->setSizes({240, 620});
    splitter->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
    connect(parts->filter, &QLineEdit::textChanged, this, [this] { parts->applyFilter(); });
    connect(parts->contents, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            parts->goTo({static_cast<std::size_t>(row)});
    });
    connect(parts->browser, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
        const std::string anchor = link.fragment().toStdString();
        showAnchor(anchor.empty() ? link.toString().toStdString() : anchor);
    });
    auto* close = new QAction(this);
    close->setShortcuts({QKeySequence::Close, QKeySequence(Qt::Key_Escape)});
    connect(close, &QAction::triggered, this, &QWidget::hide);
    addAction(close);
}

HelpWindow::~HelpWindow() = default;

void HelpWindow::showAnchor(std::string_view anchor) {
    if (parts->contents->count() == 0) {
        parts->pages.load();
        for (std::size_t page = 0; page < parts->pages.count(); ++page) {
            auto* item = new QListWidgetItem(parts->pages.title(page), parts->contents);
            item->setData(pageRole, static_cast<qulonglong>(page));
        }
    }
    const QString wanted = toQString(anchor);
    parts->goTo({parts->pages.pageOfAnchor(wanted).value_or(0), wanted});
}

} // namespace tavrin
