#include "presentation/dialogs/SaveListDialog.h"

#include "presentation/QtText.h"
#include "presentation/dialogs/AnswerOnce.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <array>

namespace tavrin {

namespace {

constexpr std::size_t linesShown = 2;

QString translated(const char* text) { return QCoreApplication::translate("SaveListDialog", text); }

QString lineOf(const PreviewList::Row& row, int format) {
    const QString after = ShownName::of(row.finalName, false);
    switch (format) {
    case 0:
        return ShownName::of(row.name, false) + "\t" + after;
    case 1:
        return after;
    default:
        return ShownName::of(text::fromBytes(row.fullPath), false) + "\t" + after;
    }
}

/// The first lines that a list would have, in monospace.
QLabel* makeSample(PreviewList& list, int format) {
    QStringList lines;
    for (std::size_t i = 0; i < linesShown; ++i)
        if (const auto row = list.rowAt(i))
            lines.append(lineOf(*row, format));
    auto* label = new QLabel(lines.join('\n'));
    label->setTextFormat(Qt::PlainText);
    label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    label->setMargin(12);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

} // namespace

void SaveListDialog::ask(QWidget* parent, const WindowServices& services,
                         std::function<void(FileListChoice)> answer) {
    auto* dialog = new QDialog(parent);
    dialog->setObjectName("saveListDialog");
    dialog->setWindowTitle(translated("Save List"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setMinimumWidth(560);
    auto* tabs = new QTabWidget;
    tabs->setObjectName("fileListFormat");
    const std::array titles{translated("&Current and New Name"), translated("&New Name"),
                            translated("&Full Path and New Name")};
    for (std::size_t i = 0; i < titles.size(); ++i)
        tabs->addTab(makeSample(services.controller.nodeController(), static_cast<int>(i)), titles[i]);
    auto* onlyAffected = new QCheckBox(translated("Only items that will c&hange"));
    onlyAffected->setObjectName("shouldIncludeOnlyAffectedFiles");
    auto* buttons =
        new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel | QDialogButtonBox::Help);
    buttons->button(QDialogButtonBox::Save)->setText(translated("&Save…"));
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(tabs);
    layout->addWidget(onlyAffected);
    layout->addWidget(buttons);
    const AnswerOnce<FileListChoice> once(std::move(answer));
    const auto give = [once, tabs, onlyAffected](int choice) {
        once({choice, tabs->currentIndex(), onlyAffected->isChecked()});
    };
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [give, dialog] {
        give(NoticeAnswer::ok);
        dialog->accept();
    });
    QObject::connect(buttons, &QDialogButtonBox::helpRequested, dialog, [give, dialog] {
        give(NoticeAnswer::help);
        dialog->reject();
    });
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    QObject::connect(dialog, &QDialog::rejected, dialog, [give] { give(NoticeAnswer::cancel); });
    dialog->open();
}

} // namespace tavrin
