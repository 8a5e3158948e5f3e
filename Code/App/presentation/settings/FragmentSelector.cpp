#include "presentation/settings/FragmentSelector.h"

#include "actions/BaseRenameAction.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <array>

namespace tavrin {

namespace {

struct Fragment {
    int mode;
    const char* name;
    const char* caption;
    const char* spoken;
    const char* before; ///< the sample name, in three parts: before the fragment, the fragment, behind it
    const char* marked;
    const char* behind;
};

constexpr std::array fragments{
    Fragment{1, "fragment1", "Name", "Name without extension", "", "photo", ".jpg"},
    Fragment{0, "fragment0", "Whole name", "Whole name", "", "photo.jpg", ""},
    Fragment{2, "fragment2", "Extension", "Extension without dot", "photo.", "jpg", ""},
    Fragment{3, "fragment3", "With dot", "Extension with dot", "photo", ".jpg", ""},
};

/// A button with a sample name, a part of which stands on the highlight.
class FragmentButton final : public QAbstractButton {
  public:
    explicit FragmentButton(const Fragment& shownFragment) : fragment(shownFragment) {
        setCheckable(true);
        setAutoExclusive(true);
        setObjectName(fragment.name);
        setAccessibleName(fragment.spoken);
        setToolTip(fragment.spoken);
        setFocusPolicy(Qt::TabFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance("photo.jpg") + 20, fontMetrics().height() + 14};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionButton option;
        option.initFrom(this);
        option.state.setFlag(QStyle::State_Raised, !isDown() && !isChecked());
        option.state.setFlag(QStyle::State_On, isChecked());
        option.state.setFlag(QStyle::State_Sunken, isDown());
        painter.drawControl(QStyle::CE_PushButtonBevel, option);
        drawSample(painter);
        if (hasFocus()) {
            QStyleOptionFocusRect focus;
            focus.initFrom(this);
            focus.rect = rect().adjusted(3, 3, -3, -3);
            painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
        }
    }

  private:
    void drawSample(QPainter& painter) const {
        const QFontMetrics metrics = fontMetrics();
        const int whole =
            metrics.horizontalAdvance(QString(fragment.before) + fragment.marked + fragment.behind);
        int x = (width() - whole) / 2;
        const int top = (height() - metrics.height()) / 2;
        const auto draw = [&](const char* text, bool isMarked) {
            const int advance = metrics.horizontalAdvance(text);
            const QRect place(x, top, advance, metrics.height());
            if (isMarked) {
                painter.setPen(Qt::NoPen);
                painter.setBrush(palette().color(isChecked() ? QPalette::Highlight : QPalette::Mid));
                painter.setRenderHint(QPainter::Antialiasing);
                painter.drawRoundedRect(place.adjusted(-2, -1, 2, 1), 3, 3);
            }
            const bool isOnHighlight = isMarked && isChecked();
            painter.setPen(palette().color(isOnHighlight ? QPalette::HighlightedText : QPalette::ButtonText));
            painter.drawText(place, Qt::AlignVCenter, text);
            x += advance;
        };
        draw(fragment.before, false);
        draw(fragment.marked, true);
        draw(fragment.behind, false);
    }

    const Fragment& fragment;
};

} // namespace

FragmentSelector::FragmentSelector(BaseRenameAction& action, Size size)
    : binding(action, "fragmentSelection",
              [this](const std::optional<PropertyValue>& value) { show(value ? intValue(*value) : 1); }) {
    setObjectName("fragmentSelection");
    setAccessibleName("Apply to");
    if (size == Size::box)
        addBox();
    else
        addButtons(size == Size::withCaptions);
    show(action.getParamInt("fragmentSelection", 1));
}

void FragmentSelector::addButtons(bool withCaptions) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    for (std::size_t i = 0; i < fragments.size(); ++i) {
        auto* button = new FragmentButton(fragments[i]);
        buttons.push_back(button);
        const int column = static_cast<int>(i % 2);
        const int row = static_cast<int>(i / 2) * 2;
        layout->addWidget(button, row, column);
        if (withCaptions) {
            auto* caption = new QLabel(fragments[i].caption);
            caption->setAlignment(Qt::AlignHCenter);
            caption->setForegroundRole(QPalette::PlaceholderText);
            layout->addWidget(caption, row + 1, column);
        }
        connect(button, &QAbstractButton::clicked, this,
                [this, mode = fragments[i].mode] { binding.write(mode); });
    }
    setFocusProxy(buttons.front());
}

void FragmentSelector::addBox() {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    box = new QComboBox;
    box->setObjectName("fragmentSelectionBox");
    box->setAccessibleName("Apply to");
    for (const Fragment& fragment : fragments)
        box->addItem(fragment.spoken, fragment.mode);
    layout->addWidget(box);
    connect(box, &QComboBox::activated, this, [this](int row) { binding.write(box->itemData(row).toInt()); });
    setFocusProxy(box);
}

/// Any unknown mode stands for the whole name.
void FragmentSelector::show(int mode) {
    const int known = mode < 0 || mode > 3 ? 0 : mode;
    if (box)
        box->setCurrentIndex(box->findData(known));
    for (std::size_t i = 0; i < buttons.size(); ++i)
        buttons[i]->setChecked(fragments[i].mode == known);
}

} // namespace tavrin
