#include "presentation/settings/AdvancedOptions.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/Buttons.h"
#include "presentation/GlyphIcon.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

namespace tavrin {

namespace {

/// Draws its arrow, which styles leave where it is, at the beginning of the line of reading, pointing along
/// it.
class DisclosureButton final : public QToolButton {
  public:
    [[nodiscard]] QSize sizeHint() const override {
        const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
        return {2 * margin + arrowSize + gap + words, QToolButton::sizeHint().height()};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionToolButton option;
        initStyleOption(&option);
        const bool isRightToLeft = option.direction == Qt::RightToLeft;
        const QString label = std::exchange(option.text, QString());
        const auto arrow = std::exchange(option.arrowType, Qt::NoArrow);
        option.features.setFlag(QStyleOptionToolButton::Arrow, false);
        painter.drawComplexControl(QStyle::CC_ToolButton, option);
        const QRect whole = option.rect.adjusted(margin, 0, -margin, 0);
        QRect place = whole;
        place.setWidth(arrowSize);
        option.rect = QStyle::visualRect(option.direction, whole, place);
        painter.drawPrimitive(arrow == Qt::DownArrow ? QStyle::PE_IndicatorArrowDown
                              : isRightToLeft        ? QStyle::PE_IndicatorArrowLeft
                                                     : QStyle::PE_IndicatorArrowRight,
                              option);
        const QRect words =
            QStyle::visualRect(option.direction, whole, whole.adjusted(arrowSize + gap, 0, 0, 0));
        painter.drawItemText(
            words, Qt::AlignVCenter | Qt::TextShowMnemonic | (isRightToLeft ? Qt::AlignRight : Qt::AlignLeft),
            palette(), isEnabled(), label, QPalette::ButtonText);
    }

  private:
    static constexpr int margin = 4;
    static constexpr int arrowSize = 10;
    static constexpr int gap = 6;
};

} // namespace

AdvancedOptions::AdvancedOptions(const WindowServices& shared)
    : services(shared), disclosure(new DisclosureButton), content(new QWidget) {
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
            disclosure->setArrowType(isOpen ? Qt::DownArrow : Qt::RightArrow);
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
