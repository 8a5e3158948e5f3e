#pragma once

#include <QString>
#include <QTimer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QTableView;

namespace tavrin {

class PreviewTableModel;

/// Jumps from one name that holds a text to the next; it hides nothing. Object name "findBar".
class FindBar final : public QWidget {
    Q_OBJECT

  public:
    FindBar(QTableView& view, PreviewTableModel& model);

    void open();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    /// Looks from the current row on, or from behind it; long lists between other events.
    void goToMatch(bool forward, bool fromHere);
    void lookOn();
    void goTo(int row);
    void close();

    QTableView& view;
    PreviewTableModel& model;
    QLineEdit* field;
    QLabel* result;
    QTimer slices;
    QString wanted;
    int start = 0;
    int step = 0;
    bool isForward = true;
};

} // namespace tavrin
