#include "presentation/dialogs/ErrorWindow.h"

#include "presentation/QtText.h"
#include "presentation/preview/ShownName.h"
#include "support/Text.h"

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

ErrorWindow::ErrorWindow(QWidget* parent, const std::vector<ProcessingError>& reported)
    : QDialog(parent), errors(reported), list(new QListWidget) {
    setObjectName("errorWindow");
    setWindowTitle("Some items were not renamed");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    resize(680, 420);
    auto* head = new QLabel(errors.size() == 1 ? QString("1 item was not renamed.")
                                               : QString("%L1 items were not renamed.").arg(errors.size()));
    auto* message = new QLabel;
    message->setObjectName("errorMessage");
    message->setWordWrap(true);
    message->setTextFormat(Qt::PlainText);
    message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message->setMinimumHeight(3 * fontMetrics().lineSpacing());
    message->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    list->setObjectName("errorList");
    list->setAccessibleName("Failures");
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
    QPushButton* copy = buttons->addButton("&Copy All", QDialogButtonBox::ActionRole);
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
