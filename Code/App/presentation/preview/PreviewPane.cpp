#include "presentation/preview/PreviewPane.h"

namespace tavrin {

struct PreviewPane::Parts {};

PreviewPane::PreviewPane(WindowServices, QWidget* parent) : QWidget(parent) { setObjectName("previewPane"); }
PreviewPane::~PreviewPane() = default;
void PreviewPane::setColumnWidth(PreviewColumn, int, int, int) {}
void PreviewPane::setColumnHidden(PreviewColumn, bool) {}
void PreviewPane::sizeColumnsToFit() {}
void PreviewPane::listChanged() {}
void PreviewPane::previewFinished() {}
void PreviewPane::refreshProgress() {}
void PreviewPane::selectPreviewTab(PreviewTab) {}
void PreviewPane::enterDropletEditMode() {}
std::vector<RowId> PreviewPane::selection() const { return {}; }
std::int32_t PreviewPane::itemsToRename() const { return 0; }
void PreviewPane::setShow(Show) {}
void PreviewPane::openFind() {}
void PreviewPane::goToProblem(bool) {}
void PreviewPane::moveSelection(bool) {}
void PreviewPane::openSelected() {}
void PreviewPane::revealSelected() {}
void PreviewPane::copySelected() {}
void PreviewPane::pasteFiles() {}

} // namespace tavrin
