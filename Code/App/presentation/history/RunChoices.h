#pragma once

#include "presentation/history/HistoryValues.h"

#include <QCoreApplication>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace tavrin {

enum class RunChoice : std::uint8_t { none, undo, redo, finish };

/// What can be done about a past run, and what that would come to. Refers to both values.
class RunChoices {
    Q_DECLARE_TR_FUNCTIONS(tavrin::RunChoices)

  public:
    RunChoices(const ShownRun& shownRun, const RunContents& itsContents)
        : run(shownRun), contents(itsContents) {}

    /// What is most likely wanted.
    [[nodiscard]] RunChoice first() const;
    /// What else there is to do about a run that did not come to its end.
    [[nodiscard]] RunChoice second() const;
    /// Whether it is the undo of the run that does it, else its redo: an undo that was cut off goes on.
    [[nodiscard]] bool isByUndo(RunChoice choice) const;
    /// How many names it would change; 0 until the items were looked at.
    [[nodiscard]] std::size_t possible(RunChoice choice) const;
    [[nodiscard]] bool isOn(RunChoice choice) const;

    [[nodiscard]] static const char* objectNameOf(RunChoice choice);
    /// The label of its button.
    [[nodiscard]] QString labelOf(RunChoice choice, bool withCount) const;
    /// "485 of 487 names can be undone. 2 items are no longer as the run left them."
    [[nodiscard]] QString sentence() const;

  private:
    [[nodiscard]] QString sentenceOfInterrupted() const;
    [[nodiscard]] QString extentOf(RunChoice choice) const;

    const ShownRun& run;
    const RunContents& contents;
};

} // namespace tavrin
