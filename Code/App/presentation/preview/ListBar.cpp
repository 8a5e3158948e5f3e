#include "presentation/preview/ListBar.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/WindowCommands.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <array>
#include <utility>

namespace tavrin {

namespace {

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
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(4);
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
    layout->addSpacing(12);
    addFilter("processFiles", Glyph::files, tr("Files"), tr("Files take part"));
    addFilter("processFolders", Glyph::folders, tr("Folders"), tr("Folders take part"));
    addFilter("processSubfolders", Glyph::subfolders, tr("Subfolders"),
              tr("Process subfolders and their contents"));
    layout->addStretch(1);
    addShowMenu(commands);
    QToolButton* find = makeToolButton("findButton", Glyph::search, tr("Find in the list (Ctrl+F)"));
    find->setAccessibleName(tr("Find in the list"));
    find->setFocusPolicy(Qt::TabFocus);
    performs(*find, *commands.findInList);
    layout->addWidget(find);
}

ListBar::~ListBar() = default;

void ListBar::addFilter(const char* key, Glyph glyph, const QString& text, const QString& tip) {
    auto* button = new ToggleButton(text, glyph);
    button->setObjectName(QString(key) + "Button");
    button->setToolTip(tip);
    layout()->addWidget(button);
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
                                         {tr("&Problems"), commands.showProblems}}) {
        QAction* action = menu->addAction(label);
        action->setCheckable(true);
        showActions->addAction(action);
        connect(action, &QAction::triggered, command, &QAction::trigger);
    }
    showActions->actions().front()->setChecked(true);
    showButton->setMenu(menu);
    layout()->addWidget(showButton);
}

void ListBar::setShow(PreviewTableModel::Show what, const QString& label) {
    if (what == PreviewTableModel::Show::chosen) {
        if (QAction* former = showActions->checkedAction())
            former->setChecked(false);
        showButton->setText(label);
        return;
    }
    const std::array texts{tr("Show: All"), tr("Show: To Rename"), tr("Show: Problems")};
    showActions->actions().at(static_cast<int>(what))->setChecked(true);
    showButton->setText(texts[static_cast<std::size_t>(what)]);
}

} // namespace tavrin
