#include "presentation/settings/FileEditor.h"

#include "actions/BaseRenameAction.h"
#include "actions/list/RenameFromListAction.h"
#include "presentation/QtText.h"
#include "support/text/Text.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace tavrin {

FileEditor::FileEditor(BaseRenameAction& listAction, const WindowServices&)
    : action(listAction), pathLabel(new QLabel),
      binding(listAction, "listFilePath", [this](const std::optional<PropertyValue>& value) {
          show(value ? toQString(textValue(*value)) : QString());
      }) {
    pathLabel->setObjectName("listFilePathLabel");
    pathLabel->setTextFormat(Qt::PlainText);
    pathLabel->setFrameShape(QFrame::StyledPanel);
    pathLabel->setMargin(4);
    pathLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    pathLabel->setAccessibleName("List file");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pathLabel);
    auto* buttons = new QHBoxLayout;
    layout->addLayout(buttons);
    const auto addButton = [&](const char* name, const char* text, auto&& effect) {
        auto* button = new QPushButton(QString::fromUtf8(text));
        button->setAutoDefault(false);
        button->setObjectName(name);
        buttons->addWidget(button);
        connect(button, &QPushButton::clicked, this, effect);
        return button;
    };
    setFocusProxy(addButton("browse", "Browse…", [this] { browse(); }));
    const auto listOf = [this] { return dynamic_cast<RenameFromListAction*>(&action); };
    addButton("reload", "Reload", [listOf] {
        if (auto* list = listOf())
            list->reload();
    });
    addButton("clear", "Clear", [listOf] {
        if (auto* list = listOf())
            list->clear();
    });
    buttons->addStretch(1);
}

void FileEditor::show(const QString& newPath) {
    path = newPath;
    pathLabel->setToolTip(path.toHtmlEscaped());
    pathLabel->setText(
        pathLabel->fontMetrics().elidedText(path, Qt::ElideMiddle, std::max(80, pathLabel->width() - 16)));
}

void FileEditor::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    show(path);
}

void FileEditor::browse() {
    auto* dialog = new QFileDialog(window(), "Choose a List of Names");
    dialog->setObjectName("browseDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
        if (auto* list = dynamic_cast<RenameFromListAction*>(&action))
            list->load(fromQString(chosen));
    });
    dialog->open();
}

} // namespace tavrin
