#include "presentation/dialogs/ErrorWindow.h"

#include "presentation/QtText.h"
#include "presentation/dialogs/MessageText.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tavrin {

namespace {

QString shownPath(const ProcessingError& error) { return ShownName::of(text::fromBytes(error.path), false); }

} // namespace

ErrorWindow::ErrorWindow(QWidget* parent, const FailureReport& report)
    : QDialog(parent), errors(report.errors), list(new QListWidget) {
    setObjectName("errorWindow");
    setWindowTitle(tr("Some items were not renamed"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    resize(680, 420);
    QString text = toQString(notRenamedText(report.notRenamed));
    if (report.notRenamed > errors.size())
        text += ' ' + tr("Those that you have been told of during the run are not listed again.");
    auto* head = new QLabel(text + '\n' + toQString(report.done));
    head->setObjectName("errorHead");
    head->setWordWrap(true);
    auto* message = new MessageText(3);
    message->setObjectName("errorMessage");
    message->setAccessibleName(tr("Reason"));
    list->setObjectName("errorList");
    list->setAccessibleName(tr("Failures"));
    list->setUniformItemSizes(true);
    list->setSpacing(2);
    list->setTextElideMode(Qt::ElideMiddle);
    for (const ProcessingError& error : errors)
        list->addItem(toQString(error.title) + " – " + shownPath(error));
    connect(list, &QListWidget::currentRowChanged, this, [this, message](int row) {
        if (row >= 0)
            message->setText(toQString(errors.at(static_cast<std::size_t>(row)).message));
    });
    list->setCurrentRow(0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QPushButton* copy = buttons->addButton(tr("&Copy All"), QDialogButtonBox::ActionRole);
    copy->setObjectName("copyErrors");
    connect(copy, &QPushButton::clicked, this, [this] { copyAll(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(head);
    layout->addWidget(list, 1);
    layout->addWidget(message);
    layout->addWidget(buttons);
}

void ErrorWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        copyAll();
    else
        QDialog::keyPressEvent(event);
}

void ErrorWindow::copyAll() const {
    QString lines;
    for (const ProcessingError& error : errors)
        lines += toQString(error.title) + ": " + toQString(error.message) + ": " + shownPath(error) + '\n';
    QApplication::clipboard()->setText(lines);
}

} // namespace tavrin
