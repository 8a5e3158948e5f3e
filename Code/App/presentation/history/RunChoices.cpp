#include "presentation/history/RunChoices.h"

#include "presentation/QtText.h"

#include <QLocale>

namespace tavrin {

namespace {

QString number(std::size_t count) { return QLocale().toString(static_cast<qulonglong>(count)); }

} // namespace

RunChoice RunChoices::first() const {
    if (!run.isUsable() || run.run.hasBegunNothing)
        return RunChoice::none;
    if (!run.run.isForward() && run.run.isUndone)
        return RunChoice::none;
    if (run.run.isUndone)
        return RunChoice::redo;
    if (!run.run.end && !run.run.isFinished)
        return RunChoice::finish;
    return run.run.isForward() ? RunChoice::undo : RunChoice::redo;
}

RunChoice RunChoices::second() const {
    const RunChoice main = first();
    if (main == RunChoice::none || run.run.isUndone || !run.isUnfinished())
        return RunChoice::none;
    if (main == RunChoice::finish)
        return run.run.isForward() ? RunChoice::undo : RunChoice::redo;
    return RunChoice::finish;
}

bool RunChoices::isByUndo(RunChoice choice) const {
    return choice == RunChoice::undo || (choice == RunChoice::finish && !run.run.isForward());
}

std::size_t RunChoices::possible(RunChoice choice) const {
    if (choice == RunChoice::none)
        return 0;
    const bool toNewNames = run.run.isForward() != isByUndo(choice);
    return contents.count(ItemNow::standIn) + contents.count(toNewNames ? ItemNow::old : ItemNow::done);
}

bool RunChoices::isOn(RunChoice choice) const {
    if (choice == RunChoice::none || contents.isFolderMissing || contents.isFolderAnother)
        return false;
    // An end that has nothing left to do is still to be recorded.
    return possible(choice) > 0 || !contents.isLookedAt || choice == RunChoice::finish;
}

const char* RunChoices::objectNameOf(RunChoice choice) {
    switch (choice) {
    case RunChoice::undo:
        return "undoRun";
    case RunChoice::redo:
        return "redoRun";
    case RunChoice::finish:
        return "finishRun";
    case RunChoice::none:
        break;
    }
    return "";
}

QString RunChoices::labelOf(RunChoice choice, bool withCount) const {
    const std::size_t count = withCount ? possible(choice) : 0;
    switch (choice) {
    case RunChoice::undo:
        return count == 0 ? tr("&Undo")
                          : tr("&Undo 1 Name||&Undo %Ln Names", nullptr, static_cast<int>(count));
    case RunChoice::redo:
        return count == 0 ? tr("&Redo")
                          : tr("&Redo 1 Name||&Redo %Ln Names", nullptr, static_cast<int>(count));
    case RunChoice::finish:
        return tr("F&inish");
    case RunChoice::none:
        break;
    }
    return {};
}

QString RunChoices::extentOf(RunChoice choice) const {
    const std::size_t count = possible(choice);
    const std::size_t lost = contents.lost();
    const auto some = [&](const QString& form) { return form.arg(number(count), number(count + lost)); };
    if (choice == RunChoice::undo)
        return lost > 0 ? some(tr("%1 of %2 names can be undone."))
                        : tr("The name can be undone.||All %Ln names can be undone.", nullptr,
                             static_cast<int>(count));
    return lost > 0 ? some(tr("%1 of %2 names can be given again."))
                    : tr("The name can be given again.||All %Ln names can be given again.", nullptr,
                         static_cast<int>(count));
}

QString RunChoices::sentenceOfInterrupted() const {
    const QString changed = tr("%1 of %2 names had been changed when it was interrupted.")
                                .arg(number(contents.count(ItemNow::done)), number(run.items));
    const std::size_t standIns = contents.count(ItemNow::standIn);
    return standIns == 0 ? changed
                         : changed + ' ' +
                               tr("1 file has a temporary name.||%Ln files have a temporary name.", nullptr,
                                  static_cast<int>(standIns));
}

QString RunChoices::sentence() const {
    if (!run.run.problem.empty())
        return toQString(run.run.problem);
    if (run.run.isUnderWay)
        return tr("This run is still under way.");
    if (run.run.hasBegunNothing)
        return tr("This run had not changed anything.");
    if (!contents.isLookedAt)
        return tr("Looking where 1 file is now…||Looking where %Ln files are now…", nullptr,
                  static_cast<int>(run.items));
    if (contents.isFolderMissing)
        return tr("The folder is not there now.");
    if (contents.isFolderAnother)
        return tr("Another folder is in its place now.");
    const RunChoice main = first();
    const std::size_t lost = contents.lost();
    if (main == RunChoice::finish)
        return sentenceOfInterrupted();
    if (main == RunChoice::none || (possible(main) == 0 && lost == 0))
        return tr("There is nothing left to undo or to redo.");
    return lost == 0 ? extentOf(main)
                     : extentOf(main) + ' ' +
                           tr("1 item is no longer as the run left it.||%Ln items are no longer as the run "
                              "left them.",
                              nullptr, static_cast<int>(lost));
}

} // namespace tavrin
