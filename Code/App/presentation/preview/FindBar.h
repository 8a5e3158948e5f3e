#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QTableView;

namespace tavrin {

class PreviewTableModel;

/// Jumps from one name that holds a text to the next; it hides nothing. Object name "findBar".
class FindBar final : public QWidget {
  public:
    FindBar(QTableView& view, PreviewTableModel& model);

    void open();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void goToMatch(bool forward, bool fromHere);
    void close();

    QTableView& view;
    PreviewTableModel& model;
    QLineEdit* field;
    QLabel* result;
};

} // namespace tavrin
