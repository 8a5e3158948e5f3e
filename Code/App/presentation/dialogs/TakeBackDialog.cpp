#include "presentation/dialogs/TakeBackDialog.h"

#include "presentation/QtText.h"
#include "presentation/dialogs/AnswerOnce.h"
#include "presentation/dialogs/ErrorWindow.h"
#include "presentation/dialogs/MessageText.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int measuredRows = 100; // more than are in sight at first
constexpr int widestNames = 280;  // at first, so that both columns of names are in sight

QTreeWidget* listOf(const TakeBackQuestion& question) {
    auto* list = new QTreeWidget;
    list->setObjectName("takeBackList");
    list->setAccessibleName(TakeBackDialog::tr("What will be renamed"));
    list->setHeaderLabels(
        {TakeBackDialog::tr("Current Name"), TakeBackDialog::tr("New Name"), TakeBackDialog::tr("Folder")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setTextElideMode(Qt::ElideMiddle);
    for (const TakeBackQuestion::Row& row : question.rows)
        list->addTopLevelItem(
            new QTreeWidgetItem({ShownName::of(row.name, false), ShownName::of(row.newName, false),
                                 ShownName::of(text::fromBytes(row.folder), false)}));
    list->header()->setResizeContentsPrecision(measuredRows);
    list->header()->resizeSections(QHeaderView::ResizeToContents);
    for (const int names : {0, 1})
        list->header()->resizeSection(names, std::min(list->header()->sectionSize(names), widestNames));
    if (question.count > question.rows.size()) {
        auto* rest = new QTreeWidgetItem(
            {TakeBackDialog::tr("… and %L1 more").arg(question.count - question.rows.size())});
        list->addTopLevelItem(rest);
        rest->setFirstColumnSpanned(true);
    }
    return list;
}

} // namespace

TakeBackDialog::TakeBackDialog(QWidget* parent, const TakeBackQuestion& question) : QDialog(parent) {
    setObjectName("takeBackDialog");
    setWindowTitle(toQString(question.verb));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    resize(680, 420);
    auto* layout = new QVBoxLayout(this);
    auto* head = new MessageText;
    head->setText(ShownName::of(text::fromUtf8(question.title), false));
    QFont strong = head->font();
    strong.setWeight(QFont::DemiBold);
    head->setFont(strong);
    layout->addWidget(head);
    layout->addWidget(new QLabel(
        counted(question.count, tr("1 item gets another name:"), tr("%L1 items get another name:"))));
    layout->addWidget(listOf(question), 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    QPushButton* go = buttons->addButton("&" + toQString(question.verb), QDialogButtonBox::AcceptRole);
    go->setObjectName("takeBackButton");
    if (!question.problems.empty()) {
        auto* note =
            new QLabel(counted(question.problems.size(), tr("1 item can’t be renamed and stays as it is."),
                               tr("%L1 items can’t be renamed and stay as they are.")));
        note->setObjectName("takeBackProblems");
        layout->addWidget(note);
        QPushButton* why = buttons->addButton(tr("&Show Them…"), QDialogButtonBox::ActionRole);
        connect(why, &QPushButton::clicked, this, [this, problems = question.problems] {
            (new ErrorWindow(this, {problems, problems.size(), ""}))->open();
        });
    }
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    go->setDefault(true); // what is no part of the dialog yet can't be
    go->setFocus();
}

void TakeBackDialog::ask(QWidget* parent, const TakeBackQuestion& question,
                         std::function<void(bool)> answer) {
    auto* dialog = new TakeBackDialog(parent, question);
    const AnswerOnce<bool> give(std::move(answer));
    connect(dialog, &QDialog::finished, dialog, [give](int result) { give(result == QDialog::Accepted); });
    dialog->open();
}

} // namespace tavrin
