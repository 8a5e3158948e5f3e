#include "presentation/steps/RecipeClipboard.h"

#include "presentation/MessageBars.h"
#include "presentation/QtText.h"
#include "presentation/WindowCommands.h"
#include "presentation/run/RunReportText.h"
#include "presentation/start/FileAddress.h"
#include "shell/MainController.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

const QString barName = "recipeBar";
/// Of a file that is looked into without being asked for.
constexpr qint64 mostBytes = 1 << 20;
constexpr std::array<std::string_view, 2> suffixes{".recipe", "preset.plist"};

} // namespace

RecipeClipboard::RecipeClipboard(const WindowServices& shared, WindowCommands& commands,
                                 MessageBars& messageBars, QWidget& stepsPane, QWidget& listPane)
    : services(shared), recipes(shared.controller.recipeCommands()), bars(messageBars), steps(stepsPane),
      list(listPane) {
    connect(commands.copyAsCommand, &QAction::triggered, this, &RecipeClipboard::copyCommand);
    connect(commands.copySteps, &QAction::triggered, this, &RecipeClipboard::copySteps);
    connect(commands.openRecipe, &QAction::triggered, this, &RecipeClipboard::askForFile);
    connect(&commands, &WindowCommands::filesPasted, this, &RecipeClipboard::paste);
    connect(&commands, &WindowCommands::undoRequested, this, &RecipeClipboard::undo);
    connect(&commands, &WindowCommands::redoRequested, this, &RecipeClipboard::redo);
}

// --- Out of the window ---

void RecipeClipboard::copyCommand() { QApplication::clipboard()->setText(toQString(recipes.command())); }

void RecipeClipboard::copySteps() { QApplication::clipboard()->setText(toQString(recipes.line())); }

// --- Into it ---

bool RecipeClipboard::isAboutSteps() const {
    QWidget* focus = QApplication::focusWidget();
    if (focus && steps.isAncestorOf(focus))
        return true;
    return services.controller.previewControl().isPreviewEmpty() &&
           (!focus || list.isAncestorOf(focus) || focus == list.window());
}

void RecipeClipboard::paste() {
    const QMimeData* content = QApplication::clipboard()->mimeData();
    if (!content || DroppedFiles::areIn(*content) || !content->hasText() || !isAboutSteps())
        return;
    const RecipeCommands::Outcome outcome = recipes.paste(fromQString(content->text()));
    tell(outcome, tr("1 step was added.||%Ln steps were added.", nullptr, static_cast<int>(outcome.steps)));
}

void RecipeClipboard::askForFile() {
    auto* dialog = new QFileDialog(steps.window(), tr("Open Recipe"));
    dialog->setObjectName("openRecipeDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("Recipes and presets (*.recipe *.txt *.plist)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& path) { tellOpened(recipes.open(QFile::encodeName(path).toStdString())); });
    dialog->open();
}

bool RecipeClipboard::openDropped(const std::vector<std::string>& paths) {
    if (paths.size() != 1)
        return false;
    const std::string& path = paths.front();
    const QFileInfo file(QFile::decodeName(path.c_str()));
    if (!file.isFile() || file.size() > mostBytes)
        return false;
    const RecipeCommands::Outcome outcome = recipes.open(path);
    const bool isCalledSo =
        std::ranges::any_of(suffixes, [&](auto suffix) { return path.ends_with(suffix); });
    if (outcome.steps == 0 && !isCalledSo)
        return false;
    tellOpened(outcome);
    return true;
}

void RecipeClipboard::tellOpened(const RecipeCommands::Outcome& outcome) {
    tell(outcome, tr("1 step was opened.||%Ln steps were opened.", nullptr, static_cast<int>(outcome.steps)));
}

void RecipeClipboard::tell(const RecipeCommands::Outcome& outcome, const QString& done) {
    if (outcome.steps == 0) {
        bars.present({.objectName = barName,
                      .kind = BarMessage::Kind::failure,
                      .bold = toQString(outcome.title),
                      .plain = toQString(outcome.text)});
        return;
    }
    bars.present({.objectName = barName,
                  .kind = BarMessage::Kind::done,
                  .bold = done,
                  .plain = toQString(outcome.text),
                  .buttons = {{"undoSteps", tr("&Undo"), [this] {
                                   recipes.undo();
                                   bars.dismiss(barName);
                               }}}});
}

void RecipeClipboard::undo() {
    // Right after a run the keys are about that, and touch nothing by themselves.
    if (!isAboutSteps() || bars.isShowing(RunReportText::barName))
        return;
    recipes.undo();
    bars.dismiss(barName);
}

void RecipeClipboard::redo() {
    if (isAboutSteps())
        recipes.redo();
}

} // namespace tavrin
