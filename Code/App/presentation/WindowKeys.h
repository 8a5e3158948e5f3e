#pragma once

#include <QObject>
#include <vector>

class QAction;
class QMainWindow;
class QWidget;

namespace tavrin {

/// Keys that work wherever the focus is: those of the window's commands win over what fields of text would
/// do with them, but for the keys of text itself; F6 and Shift+F6 go round the parts of the window.
class WindowKeys final : public QObject {
    Q_OBJECT

  public:
    /// The parts in the order in which F6 goes through them; those that are not shown, or have nothing that
    /// takes the focus, are passed over. They outlive this.
    WindowKeys(QMainWindow& window, std::vector<QWidget*> windowParts);
    ~WindowKeys() override;

    void goToPart(bool forward);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    [[nodiscard]] bool isCommand(int keys) const;

    QMainWindow& window;
    const std::vector<QWidget*> parts;
};

} // namespace tavrin
