#include "presentation/dialogs/ShortcutsDialog.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <array>
#include <utility>

namespace tavrin {

namespace {

/// Keys that belong to a list and not to a command.
constexpr std::array<std::pair<const char*, const char*>, 10> otherKeys{{
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Go to the next or the previous part of the window"),
     "F6, Shift+F6"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Remove the selected items (in the list)"), "Del"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Move the selected rows (in the list)"), "Alt+Up, Alt+Down"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Open the current item (in the list)"), "Return"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Remove the step (in the steps)"), "Del"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Add steps from a recipe (in the steps, or in an empty list)"),
     "Ctrl+V"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Take pasted steps back (in the steps)"), "Ctrl+Z"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Switch the step on or off (in the steps)"), "Space"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Answer a question for this item"), "Return"},
    {QT_TRANSLATE_NOOP("ShortcutsDialog", "Answer a question with stop"), "Esc"},
}};

QString translated(const char* text) { return QCoreApplication::translate("ShortcutsDialog", text); }

QString plain(QString text) {
    text.replace("&&", "\x01");
    text.remove('&');
    return text.replace("\x01", "&");
}

} // namespace

void ShortcutsDialog::open(QWidget* parent) {
    auto* dialog = new QDialog(parent);
    dialog->setObjectName("shortcutsDialog");
    dialog->setWindowTitle(translated("Keyboard Shortcuts"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->resize(480, 560);
    auto* list = new QTreeWidget;
    list->setHeaderLabels({translated("Command"), translated("Keys")});
    list->setRootIsDecorated(false);
    list->setAlternatingRowColors(true);
    list->setUniformRowHeights(true);
    for (const QAction* action : parent->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly)) {
        const QString keys = QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText);
        if (!keys.isEmpty())
            new QTreeWidgetItem(list, {plain(action->text()), keys});
    }
    for (const auto& [command, keys] : otherKeys)
        new QTreeWidgetItem(list, {translated(command), keys});
    for (int row = 0; row < list->topLevelItemCount(); ++row)
        list->topLevelItem(row)->setSizeHint(0, {0, list->fontMetrics().height() + 8});
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list->header()->setStretchLastSection(false);
    list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(list);
    layout->addWidget(buttons);
    dialog->show();
}

} // namespace tavrin
