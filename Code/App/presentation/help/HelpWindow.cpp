#include "presentation/help/HelpWindow.h"

#include "presentation/QtText.h"
#include "presentation/help/HelpPages.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace tavrin {

namespace {

constexpr int pageRole = Qt::UserRole;

} // namespace

struct HelpWindow::Parts {
    HelpPages pages;
    QLineEdit* filter = new QLineEdit;
    QListWidget* contents = new QListWidget;
    QTextBrowser* browser = new QTextBrowser;

    void applyFilter();
    void show(std::size_t page, const QString& anchor);
};

void HelpWindow::Parts::applyFilter() {
    for (int row = 0; row < contents->count(); ++row) {
        const auto page = contents->item(row)->data(pageRole).toULongLong();
        contents->item(row)->setHidden(!pages.contains(page, filter->text()));
    }
}

void HelpWindow::Parts::show(std::size_t page, const QString& anchor) {
    browser->setHtml(pages.html(page));
    if (!anchor.isEmpty())
        browser->scrollToAnchor(anchor);
    const QSignalBlocker blocker(contents);
    contents->setCurrentRow(static_cast<int>(page));
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
    parts->browser->setObjectName("helpBrowser");
    parts->browser->setOpenLinks(false);
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(8, 8, 0, 8);
    leftLayout->addWidget(parts->filter);
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
            parts->show(static_cast<std::size_t>(row), QString());
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
    parts->show(parts->pages.pageOfAnchor(wanted).value_or(0), wanted);
}

} // namespace tavrin
