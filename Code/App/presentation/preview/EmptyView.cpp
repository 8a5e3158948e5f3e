#include "presentation/preview/EmptyView.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace tavrin {

EmptyView::EmptyView() : sentence(new QLabel), button(new QPushButton) {
    setObjectName("emptyView");
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    sentence->setObjectName("emptyViewText");
    sentence->setForegroundRole(QPalette::PlaceholderText);
    sentence->setAlignment(Qt::AlignCenter);
    sentence->setWordWrap(true);
    button->setObjectName("emptyViewButton");
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this] {
        if (const auto perform = effect)
            perform();
    });
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 12, 24, 12);
    column->setSpacing(12);
    column->addStretch(1);
    column->addWidget(sentence);
    column->addWidget(button, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

void EmptyView::say(const QString& reason, const QString& wayOut, std::function<void()> goThere) {
    sentence->setText(reason);
    button->setText(wayOut);
    effect = std::move(goThere);
}

} // namespace tavrin
