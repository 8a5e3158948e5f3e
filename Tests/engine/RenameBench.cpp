#include "RenameBench.h"

#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "engine/renaming/PerformRenameStage.h"
#include "engine/renaming/PrepareForRenamingStage.h"

namespace tavrin::test {

std::string StageBench::relative(std::string_view path) const {
    if (path == folder.path())
        return "/";
    if (!path.starts_with(folder.path() + "/"))
        return {};
    return std::string(path.substr(folder.path().size() + 1));
}

std::vector<std::string> StageBench::shown() {
    std::vector<std::string> names;
    for (const auto& [path, finalName] : host.finalNames())
        names.push_back(relative(path) + "=" + finalName);
    return names;
}

RenameBench::RenameBench(ItemStore::Options options, const std::string& place)
    : StageBench(std::move(options), place) {
    host.set("processSubfolders", 1);
    host.prompts.onProblem = [this](const ProblemReport& report) {
        reports.push_back(report);
        return ConfirmationChoice::one;
    };
}

std::string RenameBench::inMemory() {
    const char* const place = "/dev/shm";
    return ::access(place, W_OK) == 0 ? place : "";
}

void RenameBench::make(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (name.back() == '/')
            folder.makeFolder(name.substr(0, name.size() - 1));
        else
            folder.write(name, name);
    }
}

void RenameBench::read(const std::vector<std::string>& names) {
    for (const std::string& name : names)
        host.add({folder.path(name.back() == '/' ? name.substr(0, name.size() - 1) : name)});
    ProcessingPipeline pipeline(host.engine);
    pipeline.setProgressInfo(&host.progress);
    pipeline.addStage(std::make_unique<ReadItemsIntoDatabaseStage>(host.engine));
    host.onWorker([&] { pipeline.process(); });
}

void RenameBench::setFinalName(const std::string& name, std::u16string_view finalName) {
    StoreContext& context = host.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const RowId row = context.fileWithPath(folder.path(name));
    ASSERT_NE(row, noRow) << name;
    context.setFinalName(row, finalName);
    context.change(row).diff = !text::canonicallyEqual(context.name(row), finalName);
    context.commit();
}

void RenameBench::plan(std::string_view words) {
    std::vector<std::string> top;
    for (const std::string& word : split(words)) {
        const std::string name = word.substr(0, word.find('>'));
        make({name});
        if (std::ranges::find(top, name.substr(0, name.find('/'))) == top.end())
            top.push_back(name.substr(0, name.find('/')));
    }
    read(top);
    for (const std::string& word : split(words)) {
        const std::size_t arrow = word.find('>');
        if (arrow == std::string::npos)
            continue;
        setFinalName(word.substr(0, arrow - (word[arrow - 1] == '/' ? 1 : 0)),
                     shownName(word.substr(arrow + 1)));
    }
}

void RenameBench::happens(std::string_view steps) const {
    for (const std::string& step : split(steps, ',')) {
        std::vector<std::string> words = split(step.substr(step.find_first_not_of(' ')));
        words.resize(3);
        const auto& [what, name, other] = std::tie(words[0], words[1], words[2]);
        if (what == "remove")
            std::filesystem::remove_all(folder.path(name));
        else if (what == "move")
            std::filesystem::rename(folder.path(name), folder.path(other));
        else if (what == "write")
            folder.write(name, other);
        else if (what == "link")
            folder.link(name, other);
        else if (what == "second")
            std::filesystem::create_hard_link(folder.path(name), folder.path(other));
        else if (what == "folder")
            folder.makeFolder(name);
        else if (what == "save")
            std::filesystem::rename(folder.write(name + ".saved", "new"), folder.path(name));
        else
            ADD_FAILURE() << what;
    }
}

void RenameBench::rename() {
    reports.clear();
    host.onWorker([this] { renameOnThisThread(); });
}

void RenameBench::renameOnThisThread() {
    ProcessingPipeline pipeline(host.engine);
    pipeline.needRows();
    pipeline.setProgressInfo(&host.progress);
    pipeline.addStage(std::make_unique<PrepareForRenamingStage>(host.engine));
    pipeline.addStage(std::make_unique<PerformRenameStage>(host.engine));
    if (pipeline.process())
        checkOutcomes();
}

void RenameBench::checkOutcomes() {
    const RunOutcomes& outcomes = host.engine.runOutcomes();
    const RunOutcomes::View view = outcomes.view();
    const std::lock_guard lock(host.managedObjectContext().mutex());
    StoreContext& context = host.managedObjectContext();
    std::array<int, 5> counts{};
    for (RowId row = 1; row < context.endOfRows(); ++row)
        ++counts.at(static_cast<std::size_t>(view.of(row)));
    const auto count = [&](RunOutcome outcome) { return counts[static_cast<std::size_t>(outcome)]; };
    EXPECT_EQ(count(RunOutcome::inHand), 0);
    EXPECT_EQ(count(RunOutcome::failed), host.counters().numberOfItemsNotRenamed);
    EXPECT_EQ(outcomes.failedRows(), static_cast<std::size_t>(count(RunOutcome::failed)));
    // Of a ring that could not be put right a member may have got another name than it was to get.
    EXPECT_LE(count(RunOutcome::done), renamed());
    EXPECT_GE(count(RunOutcome::done) + count(RunOutcome::failed), renamed());
}

RenameBench::Tree RenameBench::files() const {
    Tree files = folder.tree();
    std::erase_if(files, [](const auto& entry) { return entry.first.back() == '/'; });
    return files;
}

std::vector<std::string> RenameBench::sourcePaths() {
    std::vector<std::string> paths;
    const std::lock_guard lock(host.managedObjectContext().mutex());
    for (const SourceItem& item : host.managedObjectContext().sourceItems())
        paths.push_back(relative(item.path));
    return paths;
}

std::u16string shownName(std::string_view name) {
    std::u16string shown = text::fromBytes(name);
    text::replaceUnit(shown, u':', u'/');
    return shown;
}

std::vector<std::string> split(std::string_view words, char separator) {
    std::vector<std::string> found;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(separator), words.size());
        found.emplace_back(words.substr(0, end));
        if (separator == ' ')
            std::ranges::replace(found.back(), '~', ' ');
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return found;
}

void setAll(EngineTestHost& host, std::string_view settings) {
    for (const auto& [key, value] : tree(settings))
        host.set(key, std::stoi(value));
}

void setSteps(EngineTestHost& host, std::string_view steps) {
    std::vector<EngineTestHost::Step> made;
    for (const std::string& text : split(steps, ';')) {
        EngineTestHost::Step& step = made.emplace_back();
        for (const std::string& word : split(text.substr(text.find_first_not_of(' ')))) {
            const std::size_t equals = word.find('=');
            const std::string value = word.substr(equals + 1);
            if (equals == std::string::npos)
                step.action += (step.action.empty() ? "" : " ") + word;
            else if (!value.empty() && value != "-" &&
                     value.find_first_not_of("-0123456789") == std::string::npos)
                step.parameters.emplace(word.substr(0, equals), std::stoi(value));
            else
                step.parameters.emplace(word.substr(0, equals), text::fromBytes(value));
        }
    }
    host.setSteps(made);
}

RenameBench::Tree tree(std::string_view words) {
    RenameBench::Tree files;
    for (const std::string& word : split(words)) {
        const std::size_t equals = word.find('=');
        files.emplace(word.substr(0, equals), equals == std::string::npos ? word : word.substr(equals + 1));
    }
    return files;
}

} // namespace tavrin::test
