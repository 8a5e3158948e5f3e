#include "presentation/preview/ListBar.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/GlyphIcon.h"
#include "presentation/MainWindow.h"
#include "presentation/ToggleButton.h"
#include "presentation/WindowCommands.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/commands/MainController.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <array>

namespace tavrin {

namespace {

/// Triggers a command of the window that the bar is in.
void trigger(const QWidget* widget, const char* command) {
    if (auto* window = dynamic_cast<MainWindow*>(widget->window()))
        window->commands().command(command)->trigger();
}

QToolButton* prepared(QToolButton* button, const char* name, const char* tip) {
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QToolButton* makeButton(const char* name, Glyph glyph, const char* text, const char* tip) {
    auto* button = new QToolButton;
    button->setIcon(GlyphIcon::of(glyph));
    button->setText(text);
    button->setToolButtonStyle(*text ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
    button->setAutoRaise(true);
    return prepared(button, name, tip);
}

} // namespace

ListBar::ListBar(WindowServices shared, PreviewPane& previewPane) : services(shared), pane(previewPane) {
    setObjectName("listBar");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    layout->setSpacing(4);
    QToolButton* add = makeButton("addButton", Glyph::add, "Add", "Add files or folders");
    auto* menu = new QMenu(add);
    connect(menu->addAction("Add &Files…"), &QAction::triggered, this, [this] { trigger(this, "addFiles"); });
    connect(menu->addAction("Add F&older…"), &QAction::triggered, this,
            [this] { trigger(this, "addFolder"); });
    add->setMenu(menu);
    add->setPopupMode(QToolButton::MenuButtonPopup);
    connect(add, &QToolButton::clicked, this, [this] { trigger(this, "addFiles"); });
    QToolButton* remove =
        makeButton("removeButton", Glyph::remove, "Remove", "Remove the selected items from the list");
    connect(remove, &QToolButton::clicked, this, [this] { trigger(this, "removeFile"); });
    layout->addWidget(add);
    layout->addWidget(remove);
    layout->addSpacing(12);
    addFilter("processFiles", Glyph::files, "Files", "Files take part");
    addFilter("processFolders", Glyph::folders, "Folders", "Folders take part");
    addFilter("processSubfolders", Glyph::subfolders, "Subfolders", "Process subfolders and their contents");
    layout->addStretch(1);
    addShowMenu();
    QToolButton* find = makeButton("findButton", Glyph::search, "", "Find in the list (Ctrl+F)");
    find->setAccessibleName("Find in the list");
    connect(find, &QToolButton::clicked, this, [this] { pane.openFind(); });
    layout->addWidget(find);
}

ListBar::~ListBar() = default;

void ListBar::addFilter(const char* key, Glyph glyph, const char* text, const char* tip) {
    QToolButton* button = prepared(new ToggleButton(text, glyph), (std::string(key) + "Button").c_str(), tip);
    layout()->addWidget(button);
    bindings.push_back(std::make_unique<ParameterBinding>(
        services.controller.globalSettings(), key, [button](const std::optional<PropertyValue>& value) {
            button->setChecked(value && intValue(*value) != 0);
        }));
    connect(button, &QToolButton::clicked, this, [binding = bindings.back().get(), this](bool isOn) {
        binding->write(isOn ? 1 : 0);
        if (auto* window = dynamic_cast<MainWindow*>(this->window()))
            window->commands().refresh();
    });
}

void ListBar::addShowMenu() {
    showButton = new QPushButton("Show: All");
    showButton->setObjectName("showButton");
    showButton->setToolTip("What of the list shows; all items take part all the same");
    showButton->setAutoDefault(false);
    auto* menu = new QMenu(showButton);
    showActions = new QActionGroup(this);
    constexpr std::array labels{"&All Items", "Items to Be &Renamed", "&Problems"};
    for (std::size_t i = 0; i < labels.size(); ++i) {
        QAction* action = menu->addAction(labels[i]);
        action->setCheckable(true);
        showActions->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, i] { pane.setShow(static_cast<PreviewPane::Show>(i)); });
    }
    showActions->actions().front()->setChecked(true);
    showButton->setMenu(menu);
    layout()->addWidget(showButton);
}

void ListBar::setShow(PreviewPane::Show what) {
    constexpr std::array texts{"Show: All", "Show: To Rename", "Show: Problems"};
    showActions->actions().at(static_cast<int>(what))->setChecked(true);
    showButton->setText(texts[static_cast<std::size_t>(what)]);
}

} // namespace tavrin
