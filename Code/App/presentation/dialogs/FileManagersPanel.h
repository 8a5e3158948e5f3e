#pragma once

#include "platform/desktop/FileManagerMenus.h"

#include <QWidget>
#include <vector>

class QGridLayout;
class QLabel;
class QPushButton;

namespace tavrin {

/// The entries in the menus of the file managers that are there: their states, and buttons that add or remove
/// them all.
class FileManagersPanel : public QWidget {
    Q_OBJECT

  public:
    explicit FileManagersPanel(const FileManagerMenus& menus);

  private:
    struct Row {
        FileManagerKind kind;
        QLabel* state;
    };

    void addRows(QGridLayout& grid);
    void addButtons();
    void changeAll(bool add);
    void showStates();

    const FileManagerMenus& menus;
    std::vector<Row> rows;
    QPushButton* removeButton = nullptr;
    QPushButton* addButton = nullptr;
    QLabel* failures = nullptr;
};

} // namespace tavrin
