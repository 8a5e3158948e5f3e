#include "engine/naming/ResolveFileNameConflictsStage.h"

#include "engine/naming/NameTable.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/RowValueLoader.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

/// How a scheme writes its running value.
struct Scheme {
    bool inParentheses;
    int digits; ///< 0 for a letter
    int from;
};

constexpr std::array<Scheme, 14> schemes{{
    {true, 1, 1},
    {true, 1, 0},
    {true, 0, 0},
    {true, 2, 1},
    {true, 2, 0},
    {true, 3, 1},
    {true, 3, 0},
    {false, 1, 1},
    {false, 1, 0},
    {false, 0, 0},
    {false, 2, 1},
    {false, 2, 0},
    {false, 3, 1},
    {false, 3, 0},
}};
constexpr std::int32_t defaultScheme = 9;

constexpr std::int32_t itemsPerCommit = 10000;

/// What the stage makes of the names of a folder.
ProblemFinder::Names namesOf(Settings::OnConflict rule, ResolveFileNameConflictsStage::Task task) {
    using Names = ProblemFinder::Names;
    const bool resolves = task == ResolveFileNameConflictsStage::Task::resolve;
    if (rule == Settings::OnConflict::number)
        return resolves ? Names::distinct : Names::toBeMadeDistinct;
    return rule == Settings::OnConflict::skip && resolves ? Names::keptWhereTaken : Names::asTheyAre;
}

} // namespace

std::string ResolveFileNameConflictsStage::stageDescription() const { return "Resolving name conflicts..."; }

bool ResolveFileNameConflictsStage::process() {
    if (task == Task::resolve) {
        if (!context->engineControl().needToRedoConflictResolution)
            return true;
        context->changeEngineControl().needToRedoConflictResolution = false;
        context->changeEngineControl().numberOfNamesMadeDistinct = 0;
    }
    const StageProgress report(progress);
    counter = 0;
    report.item(0);
    report.numberOfItems(context->engineControl().totalNumberOfFiles);
    report.indeterminate(false);
    report.describe("Preparing...");
    takeSettings();

    NameTable names(*context, engine.takeHashesOfNames());
    ProblemFinder problems(*context, engine.folderNotes(), settings.itemFilter(),
                           engine.selection().renamesLinks);
    if (task == Task::lookAnew)
        problems.lookForLocks([this] { return engine.isEnding(); });
    const FetchRequest request{processSubfolders ? FetchEntity::node : FetchEntity::ghostNode,
                               Predicate::isTrue(NodeKey::treatAsFolder),
                               {},
                               0};
    std::int32_t committed = 0;
    for (const RowId folder : context->fetch(request)) {
        processFolder(names, problems, folder);
        report.describeItem([&] { return fmt::format("{} files processed.", counter); });
        if (counter - committed < itemsPerCommit)
            continue;
        context->commit();
        committed = counter;
    }
    context->commit();
    engine.computeNumberOfFilesThatNeedRenaming(*context, settings.itemFilter());
    return true;
}

/// What is not going to be renamed comes first in a group, so that it can keep its name.
void ResolveFileNameConflictsStage::takeSettings() {
    const ItemFilter filter = settings.itemFilter();
    processFiles = filter.shouldProcessFiles;
    processFolders = filter.shouldProcessFolders;
    processSubfolders = filter.shouldProcessSubfolders;
    resulting = namesOf(settings.conflictRule(), task);
    firstUnchanged = settings.conflictResolutionDontChangeFirst;
    scheme = settings.conflictResolutionScheme;
    if (scheme < 0 || scheme >= static_cast<std::int32_t>(schemes.size()))
        scheme = defaultScheme;
    sortDescriptors.clear();
    if (!processFiles)
        sortDescriptors.push_back({NodeKey::treatAsFolder, true});
    else if (!processFolders)
        sortDescriptors.push_back({NodeKey::treatAsFolder, false});
    for (const std::int32_t mode : {settings.conflictResolutionOrder1, settings.conflictResolutionOrder2,
                                    settings.conflictResolutionOrder3}) {
        if (const auto descriptor = RenameEngineUtilities::sortDescriptorForMode(mode))
            sortDescriptors.push_back(*descriptor);
    }
    valuesForOrder = RenameEngineUtilities::valuesFor(sortDescriptors);
}

void ResolveFileNameConflictsStage::processFolder(NameTable& names, ProblemFinder& problems, RowId folder) {
    const std::vector<RowId> children = context->children(folder);
    std::size_t resolved = 0;
    if (resulting == ProblemFinder::Names::distinct) {
        names.read(children);
        std::vector<NameTable::Group> groups = names.takeGroups();
        loadValuesForOrder(groups);
        for (NameTable::Group& members : groups) {
            resolved += members.size();
            resolveGroup(names, std::move(members));
        }
    }
    countItems(children.size() - resolved);
    if (engine.foreseesProblems(settings))
        problems.lookAt(folder, children, resulting);
}

/// Of those alone who want one name.
void ResolveFileNameConflictsStage::loadValuesForOrder(const std::vector<NameTable::Group>& groups) {
    if (groups.empty() || valuesForOrder == RowValues::none)
        return;
    std::vector<RowId> rivals;
    for (const NameTable::Group& members : groups)
        rivals.insert(rivals.end(), members.begin(), members.end());
    if (RowValueLoader(engine, *context, settings, progress).load(rivals, valuesForOrder) > 0)
        context->commit(); // sorted is what is committed
}

void ResolveFileNameConflictsStage::resolveGroup(NameTable& names, std::vector<RowId> members) {
    context->sort(members, sortDescriptors);
    std::ranges::stable_partition(members, [this](RowId id) { return isGhost(id); });
    std::ranges::stable_partition(members, [this](RowId id) { return isFixed(id); });
    conflictCounter = 0;
    bool kept = false;
    for (const RowId id : members) {
        if (isFixed(id)) {
            kept = true;
            names.add(id);
            countItems(1);
            continue;
        }
        const std::u16string base = context->finalName(id);
        std::u16string candidate = base;
        const bool mayKeep = !isApplicable(id) || (conflictCounter == 0 && firstUnchanged);
        if (mayKeep && !kept) {
            kept = true;
        } else {
            while (names.isTaken(candidate))
                candidate = addDistinguisherToName(base);
        }
        storeCandidate(id, candidate);
        names.add(id);
        countItems(1);
    }
}

/// A folder that takes no part and has rows in it.
bool ResolveFileNameConflictsStage::isGhost(RowId id) {
    return context->row(id).entity == NodeEntity::ghostNode;
}

/// What somebody has settled by hand gives way to nothing.
bool ResolveFileNameConflictsStage::isFixed(RowId id) { return context->row(id).namedBy != NamedBy::steps; }

bool ResolveFileNameConflictsStage::isApplicable(RowId id) {
    return !isGhost(id) && context->row(id).treatAsFolder ? processFolders : processFiles;
}

void ResolveFileNameConflictsStage::storeCandidate(RowId id, const std::u16string& candidate) {
    const bool isMadeDistinct = context->finalName(id) != candidate;
    if (isMadeDistinct) {
        context->setFinalName(id, candidate);
        context->change(id).madeDistinct = true;
    }
    const bool differs = !text::canonicallyEqual(candidate, context->name(id));
    if (context->row(id).diff != differs)
        context->change(id).diff = differs;
    if (isMadeDistinct && differs && settings.itemFilter().admits(context->row(id)))
        ++context->changeEngineControl().numberOfNamesMadeDistinct;
}

std::u16string ResolveFileNameConflictsStage::addDistinguisherToName(std::u16string_view name) {
    std::u16string result(name);
    const std::size_t dot = result.rfind(u'.');
    result.insert(std::min(dot, result.size()), text::fromUtf8(nextDistinguisher()));
    return result;
}

std::string ResolveFileNameConflictsStage::nextDistinguisher() {
    const Scheme& row = schemes[static_cast<std::size_t>(scheme)];
    const std::int32_t value = conflictCounter++ + row.from;
    std::string text;
    if (row.digits > 0) {
        text = fmt::format("{:0{}}", value, row.digits);
    } else {
        text = uNumToAlpha(value);
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char letter) { return static_cast<char>(letter - 'A' + 'a'); });
    }
    return row.inParentheses ? "(" + text + ")" : text;
}

std::string ResolveFileNameConflictsStage::uNumToAlpha(std::int64_t number) {
    constexpr std::int64_t base = 26;
    std::string letters;
    do {
        letters.insert(letters.begin(), static_cast<char>('A' + number % base));
        number /= base;
    } while (number > 0);
    return letters;
}

void ResolveFileNameConflictsStage::countItems(std::size_t number) {
    counter += static_cast<std::int32_t>(number);
    StageProgress(progress).item(counter);
}

} // namespace tavrin
