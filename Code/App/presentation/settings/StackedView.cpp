#include "presentation/settings/StackedView.h"

#include "support/application/StackedViewLayout.h"

#include <QEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>

namespace tavrin {

StackedView::StackedView(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void StackedView::addViewAtBottom(QWidget* view) {
    if (std::ranges::find(stackedViews, view) != stackedViews.end())
        return;
    view->setParent(this);
    view->show();
    stackedViews.push_back(view);
    stackChanged();
}

void StackedView::addFlexiView(QWidget* view, std::int64_t withPreferredHeight) {
    flexiView = view;
    preferredFlexiViewHeight = withPreferredHeight;
    addViewAtBottom(view);
}

void StackedView::removeView(QWidget* view) {
    const auto place = std::ranges::find(stackedViews, view);
    if (place == stackedViews.end())
        return;
    stackedViews.erase(place);
    view->setParent(nullptr);
    if (flexiView == view)
        flexiView = nullptr;
    stackChanged();
}

void StackedView::removeAllViews() {
    while (!stackedViews.empty())
        removeView(stackedViews.front());
    flexiView = nullptr;
    preferredFlexiViewHeight = 0;
}

int StackedView::heightOf(const QWidget& view, int width) const {
    if (&view == flexiView)
        return static_cast<int>(preferredFlexiViewHeight);
    const int wanted = view.hasHeightForWidth() ? view.heightForWidth(width) : view.sizeHint().height();
    const int least = std::max(view.minimumHeight(), view.minimumSizeHint().height());
    return std::clamp(wanted, std::max(least, 0), std::max(least, view.maximumHeight()));
}

int StackedView::heightForWidth(int width) const {
    int sum = 0;
    for (const QWidget* view : stackedViews)
        sum += heightOf(*view, width);
    return sum;
}

QSize StackedView::sizeHint() const {
    int width = 0;
    for (const QWidget* view : stackedViews)
        width = std::max(width, view->minimumSizeHint().width());
    return {width, heightForWidth(std::max(width, this->width()))};
}

/// The scroll area gives the stack its height, and the new height lays it out.
void StackedView::stackChanged() {
    updateGeometry();
    repositionStackedViews();
    for (QWidget* around = parentWidget(); around; around = around->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(around))
            area->verticalScrollBar()->setValue(0);
    }
}

void StackedView::repositionStackedViews() {
    std::vector<double> heights;
    std::optional<std::size_t> flexi;
    for (const QWidget* view : stackedViews) {
        if (view == flexiView)
            flexi = heights.size();
        heights.push_back(heightOf(*view, width()));
    }
    const auto layout = StackedViewLayout::of(heights, flexi, preferredFlexiViewHeight, height());
    for (std::size_t i = 0; i < stackedViews.size(); ++i) {
        const StackedViewLayout::Place& place = layout.places[i];
        stackedViews[i]->setGeometry(0, static_cast<int>(place.top), width(), static_cast<int>(place.height));
    }
}

/// A view whose own needs have changed asks its parent for another place.
bool StackedView::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        repositionStackedViews();
    }
    return QWidget::event(event);
}

void StackedView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    repositionStackedViews();
}

} // namespace tavrin
