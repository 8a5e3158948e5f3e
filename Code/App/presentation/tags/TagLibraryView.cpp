#include "presentation/tags/TagLibraryView.h"

#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/GlyphIcon.h"
#include "presentation/MainWindow.h"
#include "presentation/QtText.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/ShownName.h"
#include "presentation/tags/PatternEditor.h"
#include "presentation/tags/TagValues.h"
#include "shell/commands/MainController.h"
#include "support/text/Text.h"
#include "tags/TagArrayController.h"
#include "tags/TagLibraryHelper.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>
#include <functional>
#include <utility>

namespace tavrin {

namespace {

constexpr int tagRole = Qt::UserRole;
constexpr double tabScale = 0.9;

/// What stands on the tabs, for which there is little room, and what it means.
constexpr std::array<std::pair<const char*, const char*>, 6> tabTitles{{
    {"All", "All"},
    {"Image", "Image"},
    {"Camera", "Camera"},
    {"Shot", "Shooting date"},
    {"File", "File dates"},
    {"Music", "Music"},
}};

/// Rows with some air; values stand back, at the far end.
class TagDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 6);
    }

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.column() == 0)
            return;
        option->displayAlignment = Qt::AlignRight | Qt::AlignVCenter;
        option->palette.setColor(QPalette::Text, option->palette.color(QPalette::PlaceholderText));
    }
};

/// Offers the tag of the dragged row as text.
class TagList final : public QTreeWidget {
  public:
    TagList() {
        setObjectName("tagList");
        setAccessibleName("Tags");
        setHeaderLabels({"Tag", "Value"});
        setHeaderHidden(true);
        setColumnCount(2);
        setRootIsDecorated(false);
        setAlternatingRowColors(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setItemDelegate(new TagDelegate(this));
        setUniformRowHeights(true);
        setDragEnabled(true);
        setDragDropMode(QAbstractItemView::DragOnly);
        header()->setMinimumSectionSize(20);
        header()->setStretchLastSection(true);
    }

    std::function<void(const QString& tag)> takeHandler; ///< called for a tag that is to go into the pattern

  protected:
    [[nodiscard]] QStringList mimeTypes() const override { return {"text/plain"}; }
    [[nodiscard]] QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override {
        if (items.isEmpty())
            return nullptr;
        auto* content = new QMimeData;
        content->setText(items.front()->data(0, tagRole).toString());
        return content;
    }
    void keyPressEvent(QKeyEvent* event) override {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem())
            take(currentItem());
        else
            QTreeWidget::keyPressEvent(event);
    }
    // Not the activation of the style, which may be a single click.
    void mouseDoubleClickEvent(QMouseEvent* event) override { take(itemAt(event->position().toPoint())); }
    void resizeEvent(QResizeEvent* event) override {
        QTreeWidget::resizeEvent(event);
        header()->resizeSection(0, viewport()->width() * 3 / 5);
    }

  private:
    void take(const QTreeWidgetItem* item) const {
        if (item && takeHandler)
            takeHandler(item->data(0, tagRole).toString());
    }
};

} // namespace

struct TagLibraryView::Parts {
    explicit Parts(WindowServices shared)
        : services(shared), controller(TagLibraryHelper::sharedInstance(), shared.defaults) {}

    void fill();
    void applyFilter();
    void showValuesOf(const std::string& path);

    const WindowServices services;
    TagArrayController controller;
    QTabBar* tabs = new QTabBar;
    QLineEdit* filter = new QLineEdit;
    TagList* list = new TagList;
    TagValues values;
    QTimer selectionWatch;
    std::string shownPath;
};

void TagLibraryView::Parts::fill() {
    list->clear();
    for (const TagItem* tag : controller.filteredArray()) {
        auto* item = new QTreeWidgetItem(list, {QString::fromStdString(tag->description), QString()});
        item->setData(0, tagRole, toQString(tag->name));
        item->setToolTip(0, toQString(tag->name).toHtmlEscaped());
    }
    applyFilter();
    shownPath.clear();
}

void TagLibraryView::Parts::applyFilter() {
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        const bool matches = item->text(0).contains(filter->text(), Qt::CaseInsensitive) ||
                             item->data(0, tagRole).toString().contains(filter->text(), Qt::CaseInsensitive);
        item->setHidden(!matches);
    }
}

/// The values come when they have been read; another file or tab in the meantime voids them.
void TagLibraryView::Parts::showValuesOf(const std::string& path) {
    if (path == shownPath)
        return;
    shownPath = path;
    values.read(path, [this, path](const TagValues::Texts& texts) {
        if (path != shownPath)
            return;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            QTreeWidgetItem* item = list->topLevelItem(i);
            const auto found = texts.find(fromQString(item->data(0, tagRole).toString()));
            item->setText(1, found == texts.end() ? QString() : ShownName::of(found->second, false));
        }
    });
}

TagLibraryView::TagLibraryView(WindowServices services) : parts(std::make_unique<Parts>(services)) {
    setObjectName("tagLibraryView");
    parts->tabs->setObjectName("tagTabs");
    QFont small = parts->tabs->font();
    small.setPointSizeF(small.pointSizeF() * tabScale);
    parts->tabs->setFont(small);
    parts->tabs->setExpanding(false);
    parts->tabs->setDrawBase(false);
    parts->tabs->setUsesScrollButtons(true);
    parts->tabs->setAccessibleName("Kinds of tags");
    for (const auto& [title, whole] : tabTitles) {
        const int tab = parts->tabs->addTab(title);
        parts->tabs->setTabToolTip(tab, whole);
        parts->tabs->setAccessibleTabName(tab, whole);
    }
    parts->tabs->setCurrentIndex(services.defaults.integerForKey("tagLibraryTabIndex"));
    parts->filter->setObjectName("tagFilter");
    parts->filter->setPlaceholderText("Filter tags");
    parts->filter->setAccessibleName("Filter tags");
    parts->filter->addAction(GlyphIcon::of(Glyph::search, QPalette::PlaceholderText),
                             QLineEdit::LeadingPosition);
    parts->filter->setClearButtonEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(parts->tabs);
    layout->addWidget(parts->filter);
    layout->addWidget(parts->list, 1);
    connect(parts->tabs, &QTabBar::currentChanged, this, [this](int tab) {
        parts->services.defaults.setObject("tagLibraryTabIndex", tab);
        parts->fill();
    });
    connect(parts->filter, &QLineEdit::textChanged, this, [this] { parts->applyFilter(); });
    parts->list->takeHandler = [this](const QString& tag) {
        if (auto* editor = parentWidget()->findChild<PatternEditor*>())
            editor->insert(tag);
    };
    parts->fill();
    // The values follow the selection of the list at their own pace.
    parts->selectionWatch.setInterval(250);
    connect(&parts->selectionWatch, &QTimer::timeout, this, [this] {
        auto* window = dynamic_cast<MainWindow*>(this->window());
        if (!window || !isVisible())
            return;
        const std::vector<RowId> selection = window->previewPane().selection();
        PreviewList& list = parts->services.controller.nodeController();
        const auto row = selection.empty() ? list.rowAt(0) : list.rowWithId(selection.front());
        parts->showValuesOf(row ? row->fullPath : std::string());
    });
    parts->selectionWatch.start();
}

TagLibraryView::~TagLibraryView() = default;

} // namespace tavrin
