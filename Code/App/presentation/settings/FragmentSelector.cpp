#include "presentation/settings/FragmentSelector.h"

#include "actions/BaseRenameAction.h"
#include "presentation/Buttons.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QResizeEvent>
#include <algorithm>
#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr double captionScale = 0.88;

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
    Fragment{1, "fragment1", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Name"),
             QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Name without extension"), "", "photo", ".jpg"},
    Fragment{0, "fragment0", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Whole name"),
             QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Whole name"), "", "photo.jpg", ""},
    Fragment{2, "fragment2", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Extension"),
             QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Extension without dot"), "photo.", "jpg", ""},
    Fragment{3, "fragment3", QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "With dot"),
             QT_TRANSLATE_NOOP("tavrin::FragmentSelector", "Extension with dot"), "photo", ".jpg", ""},
};

/// A button with a sample name, a part of which stands on the highlight.
class FragmentButton final : public QAbstractButton {
  public:
    explicit FragmentButton(const Fragment& shownFragment) : fragment(shownFragment) {
        setCheckable(true);
        setAutoExclusive(true);
        setObjectName(fragment.name);
        setAccessibleName(FragmentSelector::tr(fragment.spoken));
        setToolTip(accessibleName());
        setFocusPolicy(Qt::TabFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance("photo.jpg") + 14, fontMetrics().height() + 12};
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
};

} // namespace

FragmentSelector::FragmentSelector(BaseRenameAction& action, Size size)
    : binding(action, "fragmentSelection",
              [this](const std::optional<PropertyValue>& value) { show(value ? intValue(*value) : 1); }) {
    setObjectName("fragmentSelection");
    setAccessibleName(tr("Apply to"));
    if (size == Size::box)
        addBox();
    else
        addButtons(size == Size::withCaptions);
    show(action.getParamInt("fragmentSelection", 1));
}

void FragmentSelector::addButtons(bool withCaptions) {
    grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(2);
    for (const Fragment& fragment : fragments) {
        auto* button = new FragmentButton(fragment);
        buttons.push_back(button);
        if (withCaptions) {
            auto* caption = new QLabel(tr(fragment.caption), this);
            caption->setAlignment(Qt::AlignHCenter);
            QFont small = caption->font();
            small.setPointSizeF(small.pointSizeF() * captionScale);
            caption->setFont(small);
            caption->setForegroundRole(QPalette::PlaceholderText);
            captions.push_back(caption);
        }
        connect(button, &QAbstractButton::clicked, this,
                [this, mode = fragment.mode] { binding.write(mode); });
    }
    arrange(static_cast<int>(fragments.size()));
    setFocusProxy(buttons.front());
}

/// Puts the buttons into so many columns, with their captions below them.
void FragmentSelector::arrange(int newColumns) {
    if (std::exchange(columns, newColumns) == newColumns)
        return;
    for (int i = 0; i < static_cast<int>(buttons.size()); ++i) {
        const int row = i / columns * 2;
        grid->addWidget(buttons[static_cast<std::size_t>(i)], row, i % columns);
        if (!captions.empty())
            grid->addWidget(captions[static_cast<std::size_t>(i)], row + 1, i % columns);
    }
    for (int column = 0; column < static_cast<int>(buttons.size()); ++column)
        grid->setColumnStretch(column, column < columns ? 1 : 0);
}

/// With large letters or in a narrow pane, two rows take less width.
void FragmentSelector::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (buttons.empty())
        return;
    int widest = 0;
    for (const QAbstractButton* button : buttons)
        widest = std::max(widest, button->sizeHint().width());
    for (const QLabel* caption : captions)
        widest = std::max(widest, caption->sizeHint().width());
    const int all = static_cast<int>(buttons.size());
    arrange(all * widest + (all - 1) * grid->horizontalSpacing() <= event->size().width() ? all : all / 2);
}

/// Small enough for two columns: the layout alone would never let the four go.
QSize FragmentSelector::minimumSizeHint() const {
    const QSize whole = QWidget::minimumSizeHint();
    return columns > 2 ? QSize(whole.width() / 2, whole.height()) : whole;
}

void FragmentSelector::addBox() {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    box = new QComboBox;
    box->setObjectName("fragmentSelectionBox");
    box->setAccessibleName(tr("Apply to"));
    for (const Fragment& fragment : fragments)
        box->addItem(tr(fragment.spoken), fragment.mode);
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
