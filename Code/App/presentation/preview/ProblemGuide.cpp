#include "presentation/preview/ProblemGuide.h"

#include "presentation/MessageBars.h"
#include "presentation/preview/ShownName.h"
#include "shell/MainController.h"

namespace tavrin {

namespace {

constexpr const char* barName = "problemBar";

} // namespace

void ProblemGuide::refresh() {
    model.setProblems(controller.nodeController().problemIds());
    std::size_t madeDistinct = 0;
    {
        StoreContext& context = controller.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        madeDistinct = static_cast<std::size_t>(context.engineControl().numberOfNamesMadeDistinct);
    }
    if (!model.problems().empty())
        showProblems();
    else if (madeDistinct > 0)
        showMadeDistinct(madeDistinct);
    else
        bars.hideProblems();
}

QString ProblemGuide::count() const {
    return tr("1 item cannot be renamed as shown.||%Ln items cannot be renamed as shown.", nullptr,
              static_cast<int>(model.problems().size()));
}

void ProblemGuide::showProblems() {
    BarMessage message{
        .objectName = barName,
        .kind = BarMessage::Kind::failure,
        .bold = count(),
        .buttons = {{"previousProblemButton", tr("↑"), [this] { ways.go(false); },
                     tr("Previous problem (Shift+F8)")},
                    {"nextProblemButton", tr("↓"), [this] { ways.go(true); }, tr("Next problem (F8)")},
                    {"showOnlyProblems", tr("Show Only These"), ways.showOnlyProblems}},
        .isLasting = true};
    if (controller.handEdits().isAllowed())
        message.buttons.push_back({"leaveOutProblems", tr("Leave These Out"), ways.leaveOut});
    bars.showProblems(message);
    tell();
}

void ProblemGuide::showMadeDistinct(std::size_t count) {
    bars.showProblems(
        {.objectName = barName,
         .bold = tr("1 name was made distinct: it would have been the same as another.||%Ln names were made "
                    "distinct: they would have been the same.",
                    nullptr, static_cast<int>(count)),
         .buttons = {{"showOnlyDistinct", tr("Show Only These"), ways.showOnlyDistinct}},
         .isLasting = true});
}

void ProblemGuide::tell() {
    if (model.problems().empty())
        return;
    const int current = ways.current();
    const bool isThis =
        current >= 0 && current < model.rowCount() && model.hasProblem(model.rowAt(current).id);
    const int row = isThis ? current : behind(current, true);
    QString told;
    if (row >= 0) {
        const PreviewList::Row& item = model.rowAt(row);
        const QString reason = ShownName::note(item.note);
        //: %1 is the reason why an item can't be renamed, as a part of a sentence
        told = isThis ? tr("This one: %1.").arg(reason)
                      //: %1 is the name of an item, %2 why it can't be renamed
                      : tr("Next: %1, %2.").arg(model.shownName(item.name), reason);
    }
    bars.setProblemTexts(count(), told);
}

int ProblemGuide::behind(int start, bool forward) const {
    const std::vector<RowId>& rows = model.rowIds();
    const int count = static_cast<int>(rows.size());
    for (int step = 1; step <= count; ++step) {
        const int row = ((forward ? start + step : start - step) % count + count) % count;
        if (model.hasProblem(rows[static_cast<std::size_t>(row)]))
            return row;
    }
    return -1;
}

} // namespace tavrin
