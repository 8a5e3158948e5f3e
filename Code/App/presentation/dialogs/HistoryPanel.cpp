#include "presentation/dialogs/HistoryPanel.h"

#include "platform/propertylists/UserDefaults.h"
#include "presentation/QtText.h"
#include "presentation/cards/Card.h"
#include "shell/MainController.h"

#include <QFormLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace tavrin {

namespace {

constexpr int mostDays = 3650;
constexpr int mostRuns = 1000;

} // namespace

HistoryPanel::HistoryPanel(const WindowServices& shared)
    : services(shared), forgetButton(new QPushButton(tr("&Forget All…"))) {
    const HistoryLimits limits = HistoryLimits::of(services.defaults);
    auto* form = new QFormLayout;
    form->addRow(tr("Days to &keep a run:"), addLimit("historyDays", limits.days, mostDays));
    form->addRow(tr("&Most runs:"), addLimit("historyRuns", limits.runs, mostRuns));
    auto* note =
        new QLabel(tr("Older ones go at the next rename. A run that was interrupted stays until it is "
                      "finished or undone."));
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    forgetButton->setObjectName("forgetAllRuns");
    forgetButton->setAutoDefault(false);
    connect(forgetButton, &QPushButton::clicked, this, [this] { forgetAll(); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addSpacing(8);
    layout->addWidget(forgetButton, 0, Qt::AlignLeft);
}

QSpinBox* HistoryPanel::addLimit(const char* key, int value, int most) {
    auto* box = new QSpinBox;
    box->setObjectName(key);
    box->setRange(1, most);
    box->setValue(value);
    connect(box, &QSpinBox::valueChanged, this,
            [this, key](int chosen) { services.defaults.setObject(key, chosen); });
    return box;
}

void HistoryPanel::forgetAll() {
    CardContent content{.objectName = "forgetAllCard",
                        .head = tr("Forget all runs?"),
                        .text = tr("What they have renamed keeps its names, and can’t be undone any more.")};
    content.buttons = {{"cancel", tr("&Cancel")}, {"forgetAll", tr("&Forget All")}};
    content.defaultButton = 1;
    Card::open(*window(), content, [this](std::size_t button) {
        if (button == 0)
            return;
        forgetButton->setEnabled(false);
        services.controller.renameEngine().readHistory([panel = QPointer(this)](const RunHistory& history) {
            return [panel, left = history.clear().size()] {
                if (panel)
                    panel->forgetButton->setText(left == 0 ? tr("All Forgotten")
                                                           : tr("Some could not be removed"));
            };
        });
    });
}

} // namespace tavrin
