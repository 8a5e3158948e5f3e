#include "presentation/help/HelpWindow.h"

#include "presentation/QtText.h"

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
#include <utility>

namespace tavrin {

namespace {

constexpr int pageRole = Qt::UserRole;

} // namespace

void HelpWindow::applyFilter() {
    for (int row = 0; row < contents->count(); ++row) {
        const auto page = contents->item(row)->data(pageRole).toULongLong();
        contents->item(row)->setHidden(!pages.contains(page, filter->text()));
    }
}

void HelpWindow::showPlace(const Place& place) {
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

void HelpWindow::goTo(Place place) {
    if (history.empty() || history[current] != place) {
        if (!history.empty())
            history.resize(++current);
        history.push_back(std::move(place));
    }
    showPlace(history[current]);
}

void HelpWindow::goBy(std::ptrdiff_t steps) {
    const auto wanted = static_cast<std::ptrdiff_t>(current) + steps;
    if (wanted < 0 || wanted >= std::ssize(history))
        return;
    current = static_cast<std::size_t>(wanted);
    showPlace(history[current]);
}

HelpWindow::HelpWindow()
    : backButton(new QToolButton), forwardButton(new QToolButton), filter(new QLineEdit),
      contents(new QListWidget), browser(new QTextBrowser) {
    setObjectName("helpWindow");
    setWindowTitle(tr("Tavrin Help"));
    resize(860, 600);
    filter->setObjectName("helpFilter");
    filter->setPlaceholderText(tr("Search"));
    filter->setClearButtonEnabled(true);
    contents->setObjectName("helpContents");
    contents->setAccessibleName(tr("Contents"));
    contents->setSpacing(2);
    contents->setFrameShape(QFrame::NoFrame);
    browser->setObjectName("helpBrowser");
    browser->setOpenLinks(false);
    browser->setFrameShape(QFrame::NoFrame);
    browser->document()->setDocumentMargin(20);
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(8, 8, 0, 8);
    leftLayout->addWidget(buildBar());
    leftLayout->addWidget(contents, 1);
    auto* splitter = new QSplitter;
    splitter->addWidget(left);
    splitter->addWidget(browser);
    splitter->setSizes({240, 620});
    splitter->setStretchFactor(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);
    connect(filter, &QLineEdit::textChanged, this, &HelpWindow::applyFilter);
    connect(contents, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            goTo({static_cast<std::size_t>(row)});
    });
    connect(browser, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
        const std::string anchor = link.fragment().toStdString();
        showAnchor(anchor.empty() ? link.toString().toStdString() : anchor);
    });
    auto* close = new QAction(this);
    close->setShortcuts({QKeySequence::Close, QKeySequence(Qt::Key_Escape)});
    connect(close, &QAction::triggered, this, &QWidget::hide);
    addAction(close);
}

QWidget* HelpWindow::buildBar() {
    auto* bar = new QWidget;
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    backButton->setObjectName("helpBack");
    backButton->setArrowType(Qt::LeftArrow);
    addWay(backButton, tr("Back"), QKeySequence::Back, -1);
    forwardButton->setObjectName("helpForward");
    forwardButton->setArrowType(Qt::RightArrow);
    addWay(forwardButton, tr("Forward"), QKeySequence::Forward, 1);
    layout->addWidget(backButton);
    layout->addWidget(forwardButton);
    layout->addWidget(filter, 1);
    return bar;
}

void HelpWindow::addWay(QToolButton* button, const QString& text, QKeySequence::StandardKey keys, int steps) {
    button->setAutoRaise(true);
    button->setAccessibleName(text);
    button->setToolTip(QString("%1 (%2)").arg(text, QKeySequence(keys).toString(QKeySequence::NativeText)));
    auto* action = new QAction(this);
    action->setShortcuts(keys);
    addAction(action);
    connect(action, &QAction::triggered, this, [this, steps] { goBy(steps); });
    connect(button, &QToolButton::clicked, action, &QAction::trigger);
}

/// When the window is first wanted.
void HelpWindow::loadPages() {
    pages.load();
    for (std::size_t page = 0; page < pages.count(); ++page) {
        auto* item = new QListWidgetItem(pages.title(page), contents);
        item->setData(pageRole, static_cast<qulonglong>(page));
    }
}

void HelpWindow::showAnchor(std::string_view anchor) {
    if (contents->count() == 0)
        loadPages();
    const QString wanted = toQString(anchor);
    goTo({pages.pageOfAnchor(wanted).value_or(0), wanted});
}

} // namespace tavrin
