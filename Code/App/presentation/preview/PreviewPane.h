#pragma once

#include "presentation/WindowServices.h"
#include "shell/asking/FrontEnd.h"
#include "store/rows/NodeRow.h"

#include <QWidget>
#include <memory>
#include <vector>

class QMenu;

namespace tavrin {

/// The list of items with their new names, its filters, the bar of problems and the status line. Object name
/// "previewPane".
class PreviewPane final : public QWidget {
  public:
    PreviewPane(WindowServices services, QWidget* parent);
    ~PreviewPane() override;

    /// What of the list shows: a view only, all items take part all the same.
    enum class Show { all, toBeRenamed, problems };

    void setColumnWidth(PreviewColumn column, int minimum, int maximum, int width);
    void setColumnHidden(PreviewColumn column, bool hidden);
    void sizeColumnsToFit();
    /// The rows may have changed; selection and place stay where they were.
    void listChanged();
    void previewFinished();
    /// Takes over what the progress record displays: bar and status line.
    void refreshProgress();
    void selectPreviewTab(PreviewTab tab);
    /// A run has moved pictures to other names.
    void forgetPictures();
    void enterDropletEditMode();

    [[nodiscard]] std::vector<RowId> selection() const;
    /// How many of the rows shown will change, as of the last preview.
    [[nodiscard]] std::int32_t itemsToRename() const;
    void setShow(Show what);
    void openFind();
    void goToProblem(bool forward);
    /// Moves the selected rows by one place, which makes the order one by hand.
    void moveSelection(bool up);
    void openSelected();
    void revealSelected();
    /// "current name, tab, new name" of the selected rows to the clipboard.
    void copySelected();
    /// Adds the files on the clipboard.
    void pasteFiles();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
