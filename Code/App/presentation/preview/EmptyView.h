#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace tavrin {

/// What stands in the place of a list of which nothing shows: why, and the way to see something. Object name
/// "emptyView".
class EmptyView final : public QWidget {
    Q_OBJECT

  public:
    EmptyView();

    void say(const QString& reason, const QString& wayOut, std::function<void()> goThere);

  private:
    QLabel* sentence;
    QPushButton* button;
    std::function<void()> effect;
};

} // namespace tavrin
