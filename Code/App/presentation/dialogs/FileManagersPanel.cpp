#include "presentation/dialogs/FileManagersPanel.h"

#include "platform/metadata/FileManager.h"
#include "presentation/QtText.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

QString textOf(MenuState state) {
    switch (state) {
    case MenuState::absent:
        return FileManagersPanel::tr("no entry");
    case MenuState::outdated:
        return FileManagersPanel::tr("out of date: another program or version has written the entry");
    case MenuState::present:
        return FileManagersPanel::tr("in the menu");
    case MenuState::systemWide:
        return FileManagersPanel::tr("in the menu, for all users");
    case MenuState::foreign:
        return FileManagersPanel::tr("not Tavrin's to change");
    }
    return {};
}

} // namespace

FileManagersPanel::FileManagersPanel(const FileManagerMenus& fileManagerMenus) : menus(fileManagerMenus) {
    setObjectName("fileManagersPanel");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(16);
    grid->setColumnStretch(1, 1);
    addRows(*grid);
    if (rows.empty()) {
        auto* none = new QLabel(tr("There is no file manager here whose menus Tavrin knows how to extend."));
        none->setWordWrap(true);
        grid->addWidget(none, 0, 0, 1, 2);
    }
    layout->addLayout(grid);
    addButtons();
    failures = new QLabel;
    failures->setObjectName("menuFailures");
    failures->setWordWrap(true);
    failures->setTextFormat(Qt::PlainText);
    failures->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    failures->hide();
    layout->addWidget(failures);
    showStates();
}

void FileManagersPanel::addRows(QGridLayout& grid) {
    for (const FileManagerKind kind : FileManagerMenus::all) {
        if (!FileManagerMenus::isInstalled(kind) && menus.state(kind) == MenuState::absent)
            continue;
        const QString name = toQString(FileManagerMenus::nameOf(kind));
        const int row = static_cast<int>(rows.size());
        auto* state = new QLabel;
        state->setObjectName("menuStateOf" + name);
        state->setWordWrap(true);
        grid.addWidget(new QLabel(name + ":"), row, 0, Qt::AlignTop);
        grid.addWidget(state, row, 1);
        rows.push_back({kind, state});
    }
}

void FileManagersPanel::addButtons() {
    addButton = new QPushButton(tr("&Add to File Managers’ Menus"));
    addButton->setObjectName("forceServicesMenuUpdate");
    removeButton = new QPushButton(tr("&Remove"));
    removeButton->setObjectName("removeFromMenus");
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {addButton, removeButton}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    static_cast<QVBoxLayout*>(layout())->addLayout(buttons);
    connect(addButton, &QPushButton::clicked, this, [this] {
        changeAll(true);
        FileManager::instance().updateServicesMenu();
    });
    connect(removeButton, &QPushButton::clicked, this, [this] { changeAll(false); });
}

void FileManagersPanel::changeAll(bool add) {
    QStringList messages;
    for (const Row& row : rows) {
        const MenuOutcome outcome = add ? menus.add(row.kind) : menus.remove(row.kind);
        if (!outcome)
            messages << toQString(outcome.message);
    }
    failures->setText(messages.join('\n'));
    failures->setVisible(!messages.isEmpty());
    showStates();
}

void FileManagersPanel::showStates() {
    bool isOwnThere = false;
    bool isOneToAdd = false;
    for (const Row& row : rows) {
        const MenuState state = menus.state(row.kind);
        row.state->setText(textOf(state));
        isOwnThere |= state == MenuState::present || state == MenuState::outdated;
        isOneToAdd |=
            state == MenuState::absent || state == MenuState::outdated || state == MenuState::foreign;
    }
    removeButton->setEnabled(isOwnThere);
    addButton->setEnabled(isOneToAdd);
}

} // namespace tavrin
