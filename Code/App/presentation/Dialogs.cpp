#include "presentation/Dialogs.h"

#include "engine/UserPrompts.h"

namespace tavrin {

void Dialogs::showAlert(QWidget*, const Alert&, std::function<void(AlertAnswer)>) {}
void Dialogs::showNotice(QWidget*, NoticeDialog, std::function<void(NoticeAnswer)>) {}
void Dialogs::showConfirmationSheet(QWidget*, ConfirmationSheet, const PropertyDictionary&,
                                    const std::optional<std::string>&, bool,
                                    std::function<void(ConfirmationChoice)>) {}
void Dialogs::showProcessingErrors(QWidget*, const std::vector<ProcessingError>&, std::function<void()>) {}
void Dialogs::askForFilesToAdd(QWidget*, const std::string&, bool,
                               std::function<void(std::optional<FilesToAdd>)>) {}
void Dialogs::askForSavePath(QWidget*, const std::string&, std::function<void(std::optional<std::string>)>) {}
void Dialogs::presentError(QWidget*, const std::string&) {}

} // namespace tavrin
