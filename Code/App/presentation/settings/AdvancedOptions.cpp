#include "presentation/settings/AdvancedOptions.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>

namespace tavrin {

AdvancedOptions::AdvancedOptions(const WindowServices& shared)
    : services(shared), disclosure(new QToolButton), content(new QWidget) {
    disclosure->setObjectName("discloseAdvancedOptions");
    disclosure->setText(tr("Advanced &Options"));
    disclosure->setAutoRaise(true);
    disclosure->setCheckable(true);
    disclosure->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(disclosure);
    layout->addWidget(content);
    auto* rows = new QVBoxLayout(content);
    constexpr int indent = 20;
    const bool isMirrored = QGuiApplication::isRightToLeft();
    rows->setContentsMargins(isMirrored ? 0 : indent, 0, isMirrored ? indent : 0, 0);
    addSetting("interactiveMode", tr("Show &confirmation dialog before renaming"));
    addSetting("showSummary", tr("Show s&ummary after renaming is complete"));
    addSetting("continueAfterRename", tr("&Keep the list after renaming"));
    addSetting("quitAfterRename", tr("&Quit after renaming"));
    addSetting("silentDroplet", tr("Create s&ilent droplets"));
    silentDropletCheckbox = content->findChild<QCheckBox*>("silentDroplet");
    addSilentDropletHelp();
    TVRNGlobalPreferencesPseudoAction& settings = services.controller.globalSettings();
    bindings.push_back(std::make_unique<ParameterBinding>(
        settings, "discloseAdvancedOptions", [this](const std::optional<PropertyValue>& value) {
            const bool isOpen = value && intValue(*value) != 0;
            disclosure->setChecked(isOpen);
            disclosure->setArrowType(isOpen                             ? Qt::DownArrow
                                     : QGuiApplication::isRightToLeft() ? Qt::LeftArrow
                                                                        : Qt::RightArrow);
            content->setVisible(isOpen);
        }));
    connect(disclosure, &QToolButton::clicked, this,
            [this, &settings](bool isOpen) { settings.setValue(isOpen ? 1 : 0, "discloseAdvancedOptions"); });
}

AdvancedOptions::~AdvancedOptions() = default;

void AdvancedOptions::addSetting(const char* key, const QString& text) {
    auto* box = new QCheckBox(text);
    box->setObjectName(key);
    content->layout()->addWidget(box);
    bindings.push_back(std::make_unique<ParameterBinding>(services.controller.globalSettings(), key,
                                                          [box](const std::optional<PropertyValue>& value) {
                                                              box->setChecked(value && intValue(*value) == 1);
                                                          }));
    connect(box, &QCheckBox::clicked, this,
            [binding = bindings.back().get()](bool isOn) { binding->write(isOn ? 1 : 0); });
}

void AdvancedOptions::addSilentDropletHelp() {
    auto* help = makeToolButton("silentDropletHelpButton", Glyph::help, tr("Help on silent droplets"));
    connect(help, &QToolButton::clicked, this, [this] { services.controller.showHelpAnchor("helpTopic19"); });
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(silentDropletCheckbox);
    row->addWidget(help);
    row->addStretch(1);
    static_cast<QVBoxLayout*>(content->layout())->addLayout(row);
}

void AdvancedOptions::enterDropletEditMode() {
    silentDropletCheckbox->setText(tr("Execute as a \"s&ilent\" droplet"));
    services.controller.globalSettings().setValue(1, "discloseAdvancedOptions");
}

} // namespace tavrin
