#include "presentation/preview/ListBar.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/WindowCommands.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr int sideMargin = 12;
constexpr int spacing = 4;
constexpr int groupGap = 16;

QToolButton* makeButton(const char* name, Glyph glyph, const QString& text, const QString& tip) {
    QToolButton* button = makeToolButton(name, glyph, tip);
    button->setText(text);
    button->setAccessibleName(text);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

ListBar::ListBar(const WindowServices& shared, WindowCommands& commands) : services(shared) {
    setObjectName("listBar");
    auto* layout = new QHBoxLayout(this);
    layout->setSpacing(spacing);
    setLow(false);
    QToolButton* add = makeButton("addButton", Glyph::add, tr("Add"), tr("Add files or folders"));
    auto* menu = new QMenu(add);
    menu->addActions({commands.addFiles, commands.addFolder});
    add->setMenu(menu);
    add->setPopupMode(QToolButton::MenuButtonPopup);
    performs(*add, *commands.addFiles);
    QToolButton* remove = makeButton("removeButton", Glyph::remove, tr("Remove"),
                                     tr("Remove the selected items from the list"));
    performs(*remove, *commands.removeFile);
    layout->addWidget(add);
    layout->addWidget(remove);
    captioned = {add, remove};
    layout->addSpacing(groupGap - spacing);
    addFilter("processFiles", Glyph::files, tr("Files"), tr("Files take part"));
    addFilter("processFolders", Glyph::folders, tr("Folders"), tr("Folders take part"));
    addFilter("processSubfolders", Glyph::subfolders, tr("Subfolders"),
              tr("Process subfolders and their contents"));
    layout->addStretch(1);
    addShowMenu(commands);
    QToolButton* text = makeToolButton("namesAsTextButton", Glyph::text, tr("Names as text (Ctrl+Shift+E)"));
    text->setAccessibleName(tr("Names as text"));
    text->setFocusPolicy(Qt::TabFocus);
    performs(*text, *commands.namesAsText);
    connect(commands.namesAsText, &QAction::changed, text,
            [text, usual = text->toolTip(), plain = commands.namesAsText->toolTip(),
             command = commands.namesAsText] {
                text->setToolTip(command->toolTip() == plain ? usual : command->toolTip());
            });
    layout->addWidget(text);
    folding.push_back(text);
    QToolButton* find = makeToolButton("findButton", Glyph::search, tr("Find in the list (Ctrl+F)"));
    find->setAccessibleName(tr("Find in the list"));
    find->setFocusPolicy(Qt::TabFocus);
    performs(*find, *commands.findInList);
    layout->addWidget(find);
    folding.push_back(find);
    addMoreMenu(commands);
}

ListBar::~ListBar() = default;

void ListBar::addFilter(const char* key, Glyph glyph, const QString& text, const QString& tip) {
    auto* button = new ToggleButton(text, glyph);
    button->setObjectName(QString(key) + "Button");
    button->setToolTip(tip);
    layout()->addWidget(button);
    captioned.push_back(button);
    folding.push_back(button);
    bindings.push_back(std::make_unique<ParameterBinding>(
        services.controller.globalSettings(), key,
        [button](const auto& value) { button->setChecked(value && intValue(*value) != 0); }));
    connect(button, &QToolButton::clicked, this,
            [binding = bindings.back().get()](bool isOn) { binding->write(isOn ? 1 : 0); });
}

void ListBar::addShowMenu(WindowCommands& commands) {
    showButton = new QPushButton(tr("Show: All"));
    showButton->setObjectName("showButton");
    showButton->setToolTip(tr("What of the list shows; all items take part all the same"));
    showButton->setAutoDefault(false);
    auto* menu = new QMenu(showButton);
    showActions = new QActionGroup(this);
    showActions->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const auto& [label, command] : {std::pair{tr("&All Items"), commands.showAllItems},
                                         {tr("Items to Be &Renamed"), commands.showItemsToBeRenamed},
                                         {tr("&Problems"), commands.showProblems},
                                         {tr("&Not Renamed"), commands.showNotRenamed}}) {
        QAction* action = menu->addAction(label);
        action->setCheckable(true);
        showActions->addAction(action);
        connect(action, &QAction::triggered, command, &QAction::trigger);
    }
    showActions->actions().front()->setChecked(true);
    showButton->setMenu(menu);
    layout()->addWidget(showButton);
}

/// What has no room in the row, with the same words.
void ListBar::addMoreMenu(WindowCommands& commands) {
    moreButton = new MenuButton;
    moreButton->setObjectName("moreButton");
    //: A button that opens a menu; as short as possible
    moreButton->setText(tr("More"));
    moreButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    moreButton->setArrowType(Qt::DownArrow);
    moreButton->setPopupMode(QToolButton::InstantPopup);
    moreButton->setFocusPolicy(Qt::TabFocus);
    moreButton->setAutoRaise(true);
    moreButton->addActions(
        {commands.processFiles, commands.processFolders, commands.processSubfolders, commands.findInList});
    QMenu* show = showButton->menu();
    show->setTitle(tr("Show"));
    moreButton->addAction(show->menuAction());
    folding.push_back(showButton);
    layout()->addWidget(moreButton);
    moreButton->hide();
    measure();
}

void ListBar::setLow(bool isLow) {
    const int margin = isLow ? 2 : 8;
    layout()->setContentsMargins(sideMargin, margin, sideMargin, margin);
}

/// How wide each stage is, which only fonts and captions change.
void ListBar::measure() {
    for (const Stage each : {Stage::captions, Stage::icons, Stage::menu}) {
        apply(each);
        widths[static_cast<std::size_t>(each)] = layout()->sizeHint().width();
    }
    arrange();
}

/// Takes the first stage that fits.
void ListBar::arrange() {
    const auto fits = [this](Stage each) { return widths[static_cast<std::size_t>(each)] <= width(); };
    apply(fits(Stage::captions) ? Stage::captions : fits(Stage::icons) ? Stage::icons : Stage::menu);
}

void ListBar::apply(Stage newStage) {
    if (std::exchange(stage, newStage) == newStage)
        return;
    for (QToolButton* button : captioned)
        button->setToolButtonStyle(stage == Stage::captions ? Qt::ToolButtonTextBesideIcon
                                                            : Qt::ToolButtonIconOnly);
    for (QWidget* widget : folding)
        widget->setVisible(stage != Stage::menu);
    moreButton->setVisible(stage == Stage::menu);
    layout()->invalidate();
}

QSize ListBar::minimumSizeHint() const { return {widths.back(), QWidget::minimumSizeHint().height()}; }

void ListBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void ListBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (moreButton && (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange))
        measure();
}

void ListBar::setShow(PreviewTableModel::Show what, const QString& label) {
    if (what == PreviewTableModel::Show::chosen) {
        if (QAction* former = showActions->checkedAction())
            former->setChecked(false);
        showButton->setText(label);
        measure();
        return;
    }
    const std::array texts{tr("Show: All"), tr("Show: To Rename"), tr("Show: Problems"),
                           tr("Show: Not Renamed")};
    showActions->actions().at(static_cast<int>(what))->setChecked(true);
    showButton->setText(texts[static_cast<std::size_t>(what)]);
    measure();
}

} // namespace tavrin
