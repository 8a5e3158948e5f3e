#include "presentation/history/RunButtons.h"

#include "presentation/Buttons.h"
#include "presentation/FlowLayout.h"

#include <QHBoxLayout>
#include <QMenu>

namespace tavrin {

namespace {

constexpr int gap = 6;

} // namespace

RunButtons::RunButtons() {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 8, 12, 8);
    auto* aside = new FlowLayout(gap);
    row->addLayout(aside, 1);
    forgetButton = add("forgetRun", tr("&Forget This Run"), *aside);
    connect(forgetButton, &QPushButton::clicked, this, &RunButtons::forgetRequested);
    revealButton = add("revealRun", tr("Show in File &Manager"), *aside);
    connect(revealButton, &QPushButton::clicked, this, &RunButtons::revealRequested);
    copyButton = add("copyRun", tr("&Copy as Text"), *aside);
    connect(copyButton, &QPushButton::clicked, this, &RunButtons::copyRequested);
    otherButton = add("otherRunCommand", {}, *row);
    connect(otherButton, &QPushButton::clicked, this, [this] { emit commandRequested(second); });
    mainButton = new ProminentButton({});
    mainButton->setDefault(true);
    connect(mainButton, &QPushButton::clicked, this, [this] { emit commandRequested(first); });
    row->addWidget(mainButton);
    addMenu();
}

QPushButton* RunButtons::add(const char* name, const QString& label, QLayout& row) {
    auto* button = new QPushButton(label);
    button->setObjectName(name);
    button->setAutoDefault(false);
    row.addWidget(button);
    return button;
}

void RunButtons::addMenu() {
    auto* button = new MenuButton;
    button->setObjectName("historyMore");
    button->setAccessibleName(tr("More"));
    button->setArrowType(Qt::DownArrow);
    button->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(button);
    QAction* all = menu->addAction(tr("Forget &All Settled Runs…"), this, &RunButtons::forgetAllRequested);
    all->setObjectName("forgetAllRuns");
    QAction* list = menu->addAction(tr("&Export List…"), this, &RunButtons::exportRequested);
    list->setObjectName("exportRun");
    button->setMenu(menu);
    layout()->addWidget(button);
}

void RunButtons::describe(const ShownRun* run, const RunContents& contents, bool canRun) {
    static const ShownRun none;
    const RunChoices choices(run ? *run : none, contents);
    first = run ? choices.first() : RunChoice::none;
    second = run ? choices.second() : RunChoice::none;
    present(*mainButton, first, choices, true, canRun);
    present(*otherButton, second, choices, false, canRun);
    forgetButton->setEnabled(run && !run->run.isUnderWay);
    revealButton->setEnabled(run && !run->folder.empty() && !contents.isFolderMissing);
    copyButton->setEnabled(run && run->isUsable());
}

void RunButtons::present(QPushButton& button, RunChoice choice, const RunChoices& choices, bool isMain,
                         bool canRun) {
    button.setVisible(choice != RunChoice::none);
    button.setObjectName(RunChoices::objectNameOf(choice));
    button.setText(choices.labelOf(choice, isMain));
    button.setEnabled(choices.isOn(choice) && canRun);
}

bool RunButtons::canForget() const { return forgetButton->isEnabled(); }

void RunButtons::clickMain() {
    if (mainButton->isVisible())
        mainButton->click();
}

} // namespace tavrin
