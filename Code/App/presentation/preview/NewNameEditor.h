#pragma once

#include "platform/files/FileSystem.h"
#include "shell/preview/PreviewList.h"

#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <string>

class QLabel;

namespace tavrin {

class HandEdits;
class PreviewTableModel;
class PreviewTableView;
class RenameEngine;

/// A field over the new name of a row, in which that is typed by hand, with a line below that says what the
/// keys do or what is wrong. It stays with its row while the list is refreshed. Object name "newNameEditor".
class NewNameEditor final : public QLineEdit {
    Q_OBJECT

  public:
    struct Parts {
        PreviewTableView& view;
        PreviewTableModel& model;
        HandEdits& edits;
        RenameEngine& engine;
    };
    explicit NewNameEditor(const Parts& parts);

    /// Takes the name of a row in hand; what was being typed is kept.
    void edit(int row);
    /// Keeps what was typed, and closes.
    void finish();
    [[nodiscard]] bool isEditing() const { return edited.id != noRow; }

  signals:
    /// Names by hand are about to change.
    void changing();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void keep();
    void close();
    void goBy(int rows);
    /// Goes where the row is now, or closes where it is gone.
    void follow();
    /// Part before the extension, all of it, extension.
    void selectNextPart();
    void judge();
    void lookForTaken();
    void lookForLimit();
    void tell(const QString& words, bool isBad);
    void applyColours();
    /// What is wrong with the text whatever lies on the disk; empty when nothing is.
    [[nodiscard]] QString fault() const;

    Parts parts;
    QLabel* hint;
    bool isHintBad = false;
    QTimer rest; ///< after the last key
    PreviewList::Row edited;
    QString before;
    std::string folderOfVolume; ///< whose volume the next is; it may not be known yet
    VolumeFacts volume;
    int part = 0;
};

} // namespace tavrin
