#include "presentation/tags/TagLibraryView.h"

#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"
#include "support/text/Text.h"
#include "tags/TagLibraryHelper.h"
#include "tags/TaggedFile.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QThreadPool>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>
#include <utility>

namespace tavrin {

namespace {

TagValues::Texts textsOf(const std::string& path) {
    TagValues::Texts texts;
    TaggedPath file(path);
    for (const TagItem& tag : TagLibraryHelper::sharedInstance().availableTags())
        if (auto text = tag.extractStringFromFile(file))
            texts.insert_or_assign(tag.name, std::move(*text));
    return texts;
}

} // namespace

TagValues::~TagValues() = default;

void TagValues::read(const std::string& path, std::function<void(const Texts&)> then) {
    const std::uint64_t mine = ++asked;
    if (path.empty()) {
        then({});
        return;
    }
    const QPointer<TagValues> self(this);
    QThreadPool::globalInstance()->start([self, mine, path, then = std::move(then)] {
        Texts texts = textsOf(path);
        QMetaObject::invokeMethod(
            qApp,
            [self, mine, then, texts = std::move(texts)] {
                if (self && self->asked == mine)
                    then(texts);
            },
            Qt::QueuedConnection);
    });
}

namespace {

constexpr int tagRole = Qt::UserRole;
constexpr double tabScale = 0.9;

/// What stands on the tabs, for which there is little room, and what it means.
constexpr std::array<std::pair<const char*, const char*>, 6> tabTitles{{
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "All"), "All"},
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "Image"), "Image"},
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "Camera"), "Camera"},
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "Shot"),
     QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "Shooting date")},
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "File"),
     QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "File dates")},
    {QT_TRANSLATE_NOOP("tavrin::TagLibraryView", "Music"), "Music"},
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

} // namespace

/// Offers the tag of the dragged row as text.
class TagList final : public QTreeWidget {
    Q_OBJECT

  public:
    TagList() {
        setObjectName("tagList");
        setAccessibleName(tr("Tags"));
        setHeaderLabels({tr("Tag"), tr("Value")});
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

  signals:
    void taken(const QString& tag);

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
    void take(const QTreeWidgetItem* item) {
        if (item)
            emit taken(item->data(0, tagRole).toString());
    }
};

void TagLibraryView::fill() {
    list->clear();
    for (const TagItem* tag : controller.filteredArray()) {
        auto* item = new QTreeWidgetItem(list, {QString::fromStdString(tag->description), QString()});
        item->setData(0, tagRole, toQString(tag->name));
        item->setToolTip(0, toQString(tag->name).toHtmlEscaped());
    }
    applyFilter();
    shownPath.clear();
}

void TagLibraryView::applyFilter() {
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        const bool matches = item->text(0).contains(filter->text(), Qt::CaseInsensitive) ||
                             item->data(0, tagRole).toString().contains(filter->text(), Qt::CaseInsensitive);
        item->setHidden(!matches);
    }
}

/// The values come when they have been read; another file or tab in the meantime voids them.
void TagLibraryView::showValuesOf(const std::string& path) {
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

TagLibraryView::TagLibraryView(const WindowServices& shared, const PreviewPane& preview)
    : services(shared), shownList(preview), controller(TagLibraryHelper::sharedInstance(), shared.defaults),
      tabs(new QTabBar), filter(new QLineEdit), list(new TagList) {
    setObjectName("tagLibraryView");
    buildTabs();
    filter->setObjectName("tagFilter");
    filter->setPlaceholderText(tr("Filter tags"));
    filter->setAccessibleName(tr("Filter tags"));
    filter->addAction(GlyphIcon::of(Glyph::search, QPalette::PlaceholderText), QLineEdit::LeadingPosition);
    filter->setClearButtonEnabled(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(tabs);
    layout->addWidget(filter);
    layout->addWidget(list, 1);
    connect(filter, &QLineEdit::textChanged, this, &TagLibraryView::applyFilter);
    connect(list, &TagList::taken, this, &TagLibraryView::tagTaken);
    fill();
    // The values follow the selection of the list at their own pace.
    selectionWatch.setInterval(250);
    connect(&selectionWatch, &QTimer::timeout, this, &TagLibraryView::followSelection);
    selectionWatch.start();
}

void TagLibraryView::buildTabs() {
    tabs->setObjectName("tagTabs");
    QFont small = tabs->font();
    small.setPointSizeF(small.pointSizeF() * tabScale);
    tabs->setFont(small);
    tabs->setExpanding(false);
    tabs->setDrawBase(false);
    tabs->setUsesScrollButtons(true);
    tabs->setAccessibleName(tr("Kinds of tags"));
    for (const auto& [title, whole] : tabTitles) {
        const int tab = tabs->addTab(tr(title));
        tabs->setTabToolTip(tab, tr(whole));
        tabs->setAccessibleTabName(tab, tr(whole));
    }
    tabs->setCurrentIndex(services.defaults.integerForKey("tagLibraryTabIndex"));
    connect(tabs, &QTabBar::currentChanged, this, [this](int tab) {
        services.defaults.setObject("tagLibraryTabIndex", tab);
        fill();
    });
}

void TagLibraryView::followSelection() {
    if (!isVisible())
        return;
    const auto row = shownList.firstRow();
    showValuesOf(row ? row->fullPath : std::string());
}

} // namespace tavrin

#include "TagLibraryView.moc"
