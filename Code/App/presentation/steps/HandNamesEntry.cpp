#include "presentation/steps/HandNamesEntry.h"

#include "presentation/GlyphIcon.h"
#include "presentation/QtText.h"
#include "shell/MainController.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

namespace tavrin {

HandNamesEntry::HandNamesEntry(const WindowServices& shared)
    : services(shared), box(new QCheckBox(tr("Names by hand"))), count(new QLabel) {
    setObjectName("handNamesEntry");
    box->setObjectName("namesByHand");
    box->setIcon(GlyphIcon::of(Glyph::pen, QPalette::Link));
    box->setToolTip(tr("Names by hand come after all steps"));
    connect(box, &QCheckBox::clicked, this,
            [this](bool areOn) { services.controller.handEdits().setNamesCount(areOn); });
    count->setForegroundRole(QPalette::PlaceholderText);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(8, 4, 8, 8);
    column->setSpacing(2);
    column->addWidget(line);
    column->addSpacing(6);
    column->addWidget(box);
    column->addWidget(count);
    hide();
}

void HandNamesEntry::refresh() {
    const HandEdits& edits = services.controller.handEdits();
    count->setText(tr("1 item||%Ln items", nullptr, static_cast<int>(edits.pinned())));
    count->setContentsMargins(box->sizeHint().height(), 0, 0, 0);
    box->setChecked(edits.namesCount());
    box->setAccessibleDescription(count->text());
    setVisible(edits.pinned() > 0);
}

void HandNamesEntry::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Unpin All"), this, [this] { services.controller.handEdits().unpinAll(); });
    menu->popup(event->globalPos());
}

} // namespace tavrin
