#include "presentation/settings/FragmentSelector.h"

#include "actions/BaseRenameAction.h"
#include "presentation/Buttons.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QResizeEvent>
#include <algorithm>
#include <array>
#include <utility>

namespace tavrin {

namespace {

struct Fragment {
    int mode;
    const char* name;
    const char* words;
    const char* before; ///< the sample name, in three parts: before the fragment, the fragment, behind it
    const char* marked;
    const char* behind;
};

constexpr std::array fragments{
    Fragment{1, "fragment1", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Name without extension"), "",
             "photo", ".jpg"},
    Fragment{0, "fragment0", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Whole name"), "", "photo.jpg",
             ""},
    Fragment{2, "fragment2", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Extension without dot"), "photo.",
             "jpg", ""},
    Fragment{3, "fragment3", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Extension with dot"), "photo",
             ".jpg", ""},
};

struct ButtonSize {
    double fontScale;
    int margin; ///< above and below the name, together
};

constexpr ButtonSize sizeOf(FragmentSelector::Size size) {
    switch (size) {
    case FragmentSelector::Size::large:
        return {1, 14};
    case FragmentSelector::Size::medium:
        return {1, 8};
    case FragmentSelector::Size::small:
        break;
    }
    return {0.9, 4};
}

/// A button with a sample name, a part of which stands on the highlight.
class FragmentButton final : public QAbstractButton {
  public:
    FragmentButton(const Fragment& shownFragment, ButtonSize wanted)
        : fragment(shownFragment), margin(wanted.margin) {
        QFont scaled = font();
        scaled.setPointSizeF(scaled.pointSizeF() * wanted.fontScale);
        setFont(scaled);
        setCheckable(true);
        setAutoExclusive(true);
        setObjectName(fragment.name);
        setAccessibleName(FragmentSelector::tr(fragment.words));
        setToolTip(accessibleName());
        setFocusPolicy(Qt::TabFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance("photo.jpg") + 14, fontMetrics().height() + margin};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        ToggleButton::paintGround(painter, rect(), *this, isChecked());
        painter.setLayoutDirection(Qt::LeftToRight); // names run from left to right everywhere
        drawSample(painter);
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
                painter.drawRoundedRect(place.adjusted(-2, -1, 2, 1), 3, 3);
            }
            const bool isOnHighlight = isMarked && isChecked();
            painter.setPen(palette().color(isOnHighlight ? QPalette::HighlightedText
                                           : isMarked    ? QPalette::ButtonText
                                                         : QPalette::PlaceholderText));
            painter.drawText(place, Qt::AlignVCenter, text);
            x += advance;
        };
        draw(fragment.before, false);
        draw(fragment.marked, true);
        draw(fragment.behind, false);
    }

    const Fragment& fragment;
    const int margin;
};

} // namespace

FragmentSelector::FragmentSelector(BaseRenameAction& action, Size size)
    : heading(new QLabel), grid(new QGridLayout(this)),
      binding(action, "fragmentSelection",
              [this](const std::optional<PropertyValue>& value) { show(value ? intValue(*value) : 1); }) {
    setObjectName("fragmentSelection");
    setAccessibleName(tr("Apply to"));
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(4);
    heading->setObjectName("fragmentSelectionHead");
    heading->setTextFormat(Qt::RichText);
    heading->setWordWrap(true);
    grid->addWidget(heading, 0, 0, 1, -1);
    addButtons(size);
    show(action.getParamInt("fragmentSelection", 1));
}

void FragmentSelector::addButtons(Size size) {
    for (const Fragment& fragment : fragments) {
        auto* button = new FragmentButton(fragment, sizeOf(size));
        buttons.push_back(button);
        connect(button, &QAbstractButton::clicked, this,
                [this, mode = fragment.mode] { binding.write(mode); });
    }
    arrange(static_cast<int>(fragments.size()));
    setFocusProxy(buttons.front());
}

/// Puts the buttons into so many columns.
void FragmentSelector::arrange(int newColumns) {
    if (std::exchange(columns, newColumns) == newColumns)
        return;
    for (int i = 0; i < static_cast<int>(buttons.size()); ++i)
        grid->addWidget(buttons[static_cast<std::size_t>(i)], 1 + i / columns, i % columns);
    for (int column = 0; column < static_cast<int>(buttons.size()); ++column)
        grid->setColumnStretch(column, column < columns ? 1 : 0);
}

/// With large letters or in a narrow pane, two rows take less width.
void FragmentSelector::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    int widest = 0;
    for (const QAbstractButton* button : buttons)
        widest = std::max(widest, button->sizeHint().width());
    const int all = static_cast<int>(buttons.size());
    arrange(all * widest + (all - 1) * grid->horizontalSpacing() <= event->size().width() ? all : all / 2);
}

/// Small enough for two columns: the layout alone would never let the four go.
QSize FragmentSelector::minimumSizeHint() const {
    const QSize whole = QWidget::minimumSizeHint();
    return columns > 2 ? QSize(whole.width() / 2, whole.height()) : whole;
}

/// Any unknown mode stands for the whole name.
void FragmentSelector::show(int mode) {
    const int known = mode < 0 || mode > 3 ? 0 : mode;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        buttons[i]->setChecked(fragments[i].mode == known);
        if (fragments[i].mode == known)
            //: A heading; %1 is a part of a file's name, such as "Name without extension"
            heading->setText(
                tr("<span style='font-weight:600'>Apply to</span> <i>%1</i>").arg(tr(fragments[i].words)));
    }
}

} // namespace tavrin
