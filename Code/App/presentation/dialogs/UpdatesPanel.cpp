#include "presentation/dialogs/UpdatesPanel.h"

#include "documents/UpdateFeed.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/QtText.h"
#include "shell/MainController.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace tavrin {

namespace {

constexpr const char* intervalKey = "SUScheduledCheckInterval";

struct Interval {
    const char* label;
    int seconds;
};
constexpr std::array<Interval, 4> intervals{
    {{QT_TRANSLATE_NOOP("tavrin::UpdatesPanel", "every day"), 86400},
     {QT_TRANSLATE_NOOP("tavrin::UpdatesPanel", "every week"), 604800},
     {QT_TRANSLATE_NOOP("tavrin::UpdatesPanel", "every month"), 2592000},
     {QT_TRANSLATE_NOOP("tavrin::UpdatesPanel", "never"), 0}}};

std::u16string storedAddress(const UserDefaults& defaults) {
    const auto stored = defaults.objectForKey(UpdateFeed::locationKey);
    return stored ? textOrData(*stored).value_or(u"") : u"";
}

} // namespace

UpdatesPanel::UpdatesPanel(const WindowServices& shared)
    : services(shared), address(new QLineEdit), problem(new QLabel), interval(new QComboBox),
      checkNow(new QPushButton(tr("Check &Now"))) {
    address->setObjectName("SUFeedURL");
    address->setPlaceholderText(tr("https://… or the path of a file"));
    address->setClearButtonEnabled(true);
    address->setText(toQString(storedAddress(services.defaults)));
    problem->setObjectName("feedProblem");
    problem->setWordWrap(true);
    interval->setObjectName(intervalKey);
    checkNow->setObjectName("checkForUpdatesNow");
    checkNow->setAutoDefault(false);
    addInterval();
    auto* note =
        new QLabel(tr("Tavrin asks nobody for updates unless you name a feed here. A newer version is "
                      "only told of: nothing is loaded or installed."));
    note->setWordWrap(true);
    auto* form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->addRow(tr("&Feed of updates:"), address);
    form->addRow("", problem);
    form->addRow(tr("C&heck:"), interval);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(note);
    layout->addLayout(form);
    layout->addWidget(checkNow, 0, Qt::AlignLeft);
    connect(address, &QLineEdit::editingFinished, this, [this] { storeAddress(); });
    connect(checkNow, &QPushButton::clicked, this, [this] {
        storeAddress();
        services.controller.checkForUpdates();
    });
    refresh();
}

void UpdatesPanel::addInterval() {
    const double stored = services.defaults.floatForKey(intervalKey);
    for (const Interval& each : intervals)
        interval->addItem(tr(each.label), each.seconds);
    int row = interval->findData(static_cast<int>(std::clamp(stored, 0.0, 1e9)));
    if (row < 0) {
        // Written by hand.
        interval->addItem(tr("every %1 hours").arg(std::ceil(stored / 3600)), stored);
        row = interval->count() - 1;
    }
    interval->setCurrentIndex(row);
    connect(interval, &QComboBox::activated, this, [this](int chosen) {
        const double seconds = interval->itemData(chosen).toDouble();
        services.defaults.setObject(intervalKey, seconds);
        services.controller.updateCheck().setUpdateCheckInterval(seconds);
    });
}

void UpdatesPanel::storeAddress() {
    const std::u16string text = fromQString(address->text().trimmed());
    if (text == storedAddress(services.defaults))
        return;
    if (text.empty())
        services.defaults.removeObject(UpdateFeed::locationKey);
    else
        services.defaults.setObject(UpdateFeed::locationKey, text);
    services.controller.updateCheck().feedHasChanged();
    refresh();
}

void UpdatesPanel::refresh() {
    const UpdateFeed::Place place = UpdateFeed::ofDefaults(services.defaults).place;
    const bool isUsable = place == UpdateFeed::Place::file || place == UpdateFeed::Place::web;
    problem->setText(tr("This is neither a web address nor the path of a file."));
    problem->setVisible(place == UpdateFeed::Place::unknown);
    interval->setEnabled(isUsable);
    checkNow->setEnabled(isUsable);
}

void UpdatesPanel::hideEvent(QHideEvent* event) {
    storeAddress();
    QWidget::hideEvent(event);
}

} // namespace tavrin
