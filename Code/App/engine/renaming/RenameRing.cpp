#include "engine/renaming/RenameRing.h"

#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <cerrno>

namespace tavrin {

namespace {

constexpr std::string_view pairMessage =
    "You may not have sufficient access privileges to rename either or both "
    "files, they may be locked, or the "
    "files may be on a read-only medium, an incompatible external drive or an "
    "unsupported remote file system.";
constexpr int attemptsToGoBack = 3;

} // namespace

RenameRing::RenameRing(RenameRun& currentRun, const std::vector<RowId>& siblings) : run(currentRun) {
    members.reserve(siblings.size());
    for (const RowId id : siblings) {
        run.item.moveTo(id);
        folder = run.item.folder();
        members.push_back(
            {id, run.item.component(), run.item.newComponent(), run.item.component(), run.item.isRoot()});
    }
}

void RenameRing::resolve() {
    setOutcomes(RunOutcome::inHand);
    const UserQuestions::Decision decision = ask();
    if (decision == UserQuestions::Decision::stop)
        return setOutcomes(RunOutcome::open);
    if (decision == UserQuestions::Decision::leaveOut)
        setOutcomes(RunOutcome::leftOut);
    if (decision == UserQuestions::Decision::perform) {
        debugLog("{}", isPair() ? "****** swap " : "********** resolving dependency chain **********");
        rename();
        account();
    }
    for (const Member& member : members)
        run.context.setStageFlag(member.id, run.marker);
}

void RenameRing::setOutcomes(RunOutcome outcome) {
    for (const Member& member : members)
        run.outcomes.set(member.id, outcome);
}

UserQuestions::Decision RenameRing::ask() {
    if (!run.questions.isInteractive())
        return UserQuestions::Decision::perform;
    RenameItem& first = run.item;
    first.moveTo(members.front().id);
    if (!isPair())
        return run.questions.confirmNameCycle({first.folder()});
    return run.questions.confirmSwap({first.folder(), first.fullPath(), path(members.back().name),
                                      first.shownName(), first.shownFinalName()});
}

void RenameRing::rename() {
    if (!allCanTakePart())
        return;
    run.item.moveTo(members.front().id);
    standIn = run.standIns.nameFor(run.item);
    place = &run.primitives.place(run.item);
    run.mover.begin();
    if (followFreeName() || (failure.empty() && exchangeAll() && putCaseRight()))
        return;
    walkBack();
    failure += run.mover.leftovers();
}

bool RenameRing::allCanTakePart() {
    for (const Member& member : members) {
        run.item.moveTo(member.id);
        if (!run.isInPlace(member.id))
            run.primitives.refuse("It has been renamed already");
        else if (!run.primitives.hasRoutes())
            run.primitives.refuse(RenamePrimitives::systemReason(0, {}, {}, {}));
        else if (run.primitives.check(run.item))
            continue;
        failure = fmt::format("\"{}\": {}", nameOnDisk::shown(member.name), run.primitives.failureDetail());
        return false;
    }
    return true;
}

bool RenameRing::followFreeName() {
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].wanted == members[next(i)].name)
            continue;
        int error = run.mover.rename(*place, members[i].name, members[i].wanted);
        if (error == EEXIST)
            continue;
        if (!note(error, i, members[i].wanted))
            return false;
        steps.push_back({i, nobody, members[i].name, members[i].wanted});
        members[i].lies = members[i].wanted;
        for (std::size_t k = i == 0 ? members.size() - 1 : i - 1; k != i;
             k = k == 0 ? members.size() - 1 : k - 1) {
            error = move(k, members[k].wanted);
            if (!note(error, k, members[k].wanted))
                return false;
        }
        return true;
    }
    return false;
}

bool RenameRing::exchangeAll() {
    // What lies under the first name is exchanged with the item whose name it wants, and so comes to its own.
    for (std::size_t i = 0; i + 1 < members.size(); ++i) {
        const int error = exchange(i, i + 1);
        if (error == EOPNOTSUPP && i == 0)
            return standAside();
        if (!note(error, i, members[i + 1].name))
            return false;
    }
    return true;
}

bool RenameRing::standAside() {
    if (!note(move(0, standIn), 0, standIn))
        return false;
    for (std::size_t i = members.size() - 1; i > 0; --i) {
        if (!note(move(i, members[next(i)].name), i, members[next(i)].name))
            return false;
    }
    return note(move(0, members[1].name), 0, members[1].name);
}

bool RenameRing::putCaseRight() {
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (members[i].lies != members[i].wanted && !note(move(i, members[i].wanted), i, members[i].wanted))
            return false;
    }
    return true;
}

void RenameRing::walkBack() {
    while (!steps.empty()) {
        const Step step = steps.back();
        int error = EIO;
        for (int attempt = 0; attempt < attemptsToGoBack && error != 0; ++attempt)
            error = step.other == nobody ? move(step.member, step.from) : exchange(step.member, step.other);
        // What went back has noted a step of its own.
        if (error == 0)
            steps.pop_back();
        steps.pop_back();
    }
}

int RenameRing::move(std::size_t member, const std::string& to) {
    Member& item = members[member];
    const int error =
        run.mover.move(*place, item.lies, to, [this]() -> const std::string& { return standIn; });
    if (error != 0 && !run.mover.leftUnder().empty())
        item.lies = run.mover.leftUnder();
    if (error == 0) {
        steps.push_back({member, nobody, item.lies, to});
        item.lies = to;
    }
    return error;
}

int RenameRing::exchange(std::size_t member, std::size_t other) {
    const int error = NameMover::exchange(*place, members[member].lies, members[other].lies);
    if (error == 0) {
        steps.push_back({member, other, members[member].lies, members[other].lies});
        std::swap(members[member].lies, members[other].lies);
    }
    return error;
}

bool RenameRing::note(int error, std::size_t member, std::string_view to) {
    if (error != 0)
        failure = fmt::format("\"{}\": {}", nameOnDisk::shown(members[member].name),
                              RenamePrimitives::systemReason(error, members[member].name, to, *place));
    return error == 0;
}

void RenameRing::account() {
    setOutcomes(RunOutcome::done); // what has failed is told below
    for (const Member& member : members) {
        if (member.lies == member.name)
            continue;
        run.noteMoved(member.id);
        run.tellRenamed(folder, member.name, member.lies, member.lies == member.wanted);
        ++run.primitives.actuallyRenamedCounter;
    }
    run.report.item(run.primitives.actuallyRenamedCounter);
    accountSourceItems();
    const bool nothingMoved = std::all_of(members.begin(), members.end(),
                                          [](const Member& member) { return member.lies == member.name; });
    if (isPair() && nothingMoved) {
        run.fail({members[0].id, members[1].id},
                 fmt::format("Could not swap file names '{}' and '{}'. Neither file was renamed.",
                             nameOnDisk::shown(members[0].name), nameOnDisk::shown(members[1].name)),
                 fmt::format("{} ({})", pairMessage, failure), failure, path(members[0].name));
    } else {
        for (const Member& member : members) {
            if (member.lies != member.wanted)
                report(member);
        }
    }
    if (isPair())
        run.report.describeItem(
            [&] { return fmt::format("Swap {} and {}", path(members[0].name), path(members[1].name)); });
}

void RenameRing::accountSourceItems() {
    if (!run.sourceItems.areWanted())
        return;
    // Of a pair the first one decides for both, and the paths stay in the order in which they were.
    for (std::size_t i = 0; i < members.size(); ++i) {
        const Member& member = members[isPair() ? members.size() - 1 - i : i];
        if (member.lies == member.name || !(isPair() ? members.front() : member).root)
            continue;
        run.sourceItems.remove(path(member.name));
        run.sourceItems.add(path(member.lies));
    }
}

void RenameRing::report(const Member& member) {
    const bool isUnchanged = member.lies == member.name;
    std::string detail = failure;
    if (!isUnchanged)
        detail += fmt::format(". It lies under the name \"{}\" now", nameOnDisk::shown(member.lies));
    run.primitives.refuse(detail);
    run.fail({member.id},
             isUnchanged ? "Could not perform a temporary rename while resolving a dependency chain."
                         : "Could not undo a temporary rename while resolving a dependency chain.",
             run.primitives.failureReasonString(), detail, path(member.name));
}

std::string RenameRing::path(const std::string& name) const { return joinedPath(folder, name); }

} // namespace tavrin
