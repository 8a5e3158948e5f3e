#include "presentation/settings/SectionHead.h"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace tavrin {

QWidget* makeLine() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

QWidget* makeSectionHead(const QString& text, bool isFirst) {
    auto* head = new QWidget;
    auto* layout = new QVBoxLayout(head);
    layout->setContentsMargins(0, isFirst ? 0 : 8, 0, 0);
    layout->setSpacing(8);
    auto* label = new QLabel(text);
    QFont bold = label->font();
    bold.setWeight(QFont::DemiBold);
    label->setFont(bold);
    if (!isFirst)
        layout->addWidget(makeLine());
    layout->addWidget(label);
    return head;
}

} // namespace tavrin
