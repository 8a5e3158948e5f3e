#pragma once

#include "shell/asking/FrontEnd.h"

#include <QCoreApplication>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QMessageBox;
class QWidget;

namespace tavrin {

/// The questions and notices of the application as sheets of a window. Each returns at once, deletes itself
/// when it is closed, and gives its answer once; one that is closed with its window drops the answer
/// uncalled.
struct Dialogs {
    Q_DECLARE_TR_FUNCTIONS(tavrin::Dialogs)

  public:
    static void showAlert(QWidget* parent, const Alert& alert, std::function<void(AlertAnswer)> answer);
    /// The words of a notice, and whether it offers not to come again.
    struct NoticeWords {
        const char* name; ///< of the object
        QString title;
        QString text;
        bool canBeSwitchedOff;
    };
    [[nodiscard]] static NoticeWords wordsOf(NoticeDialog dialog);
    static void showNotice(QWidget* parent, NoticeDialog dialog, std::function<void(NoticeAnswer)> answer);
    /// The same as a card over a part of a window.
    static void showNoticeCard(QWidget& over, NoticeDialog dialog, std::function<void(NoticeAnswer)> answer);
    static void showProcessingErrors(QWidget* parent, const FailureReport& report,
                                     std::function<void()> closed);
    /// `folders`: asks for folders, else for files.
    static void askForFilesToAdd(QWidget* parent, const std::string& startFolder, bool folders,
                                 std::function<void(std::optional<FilesToAdd>)> answer);
    static void askForSavePath(QWidget* parent, const std::string& title,
                               std::function<void(std::optional<std::string>)> answer);
    /// The answer is the name as it was typed; that of an existing droplet only after a question.
    static void askForDropletPath(QWidget* parent, const std::string& title, const std::string& startFolder,
                                  std::function<void(std::optional<std::string>)> answer);
    /// Returns the message box, which is open.
    static QMessageBox* presentNotice(QWidget* parent, const std::string& text);
    static QMessageBox* presentError(QWidget* parent, const std::string& message);
};

} // namespace tavrin
