#include "RandomPlan.h"

#include "common/Testing.h"
#include "engine/renaming/NameOnDisk.h"

namespace tavrin::test {

namespace {

std::string lowered(std::string_view name) { return text::toUtf8(text::lowercased(text::fromBytes(name))); }

std::string lastOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

} // namespace

const std::vector<Volume> volumes{
    {"all", {}},
    {"no exchange", {FileCall::exchange}},
    {"no flag", {FileCall::exchange, FileCall::rename}},
    {"no flag, no link", {FileCall::exchange, FileCall::rename, FileCall::link}},
    {"ignores case", {FileCall::exchange}, true}};

RandomPlan::RandomPlan(unsigned seed, bool ignoresCase) : random(seed), caseIsIgnored(ignoresCase) {
    addItem("box", upTo(1) ? "box" : "Box", "", true, 0);
}

void RandomPlan::addItem(const std::string& before, const std::string& finalName,
                         const std::string& folderAfter, bool isFolder, int depth) {
    const std::string after = folderAfter.empty() ? finalName : folderAfter + "/" + finalName;
    plan.emplace(before, finalName);
    made.push_back(before + (isFolder ? "/" : ""));
    if (isFolder) {
        fill(before, after, depth);
    } else {
        filesBefore.emplace(before, before);
        filesAfter.emplace(after, before);
    }
}

void RandomPlan::fill(const std::string& before, const std::string& after, int depth) {
    std::vector<std::string> names{"a", "A",      "b",      "B.txt", "b.TXT", "c",
                                   "d", "\u00E9", "\u00C9", "e f",   "p:q"};
    std::shuffle(names.begin(), names.end(), random);
    std::set<std::string> seen;
    if (caseIsIgnored)
        std::erase_if(names, [&](const std::string& name) { return !seen.insert(lowered(name)).second; });
    names.resize(1 + upTo(6));
    const std::vector<std::string> wanted = finalNames(names);
    for (std::size_t i = 0; i < names.size(); ++i)
        addItem(before + "/" + names[i], wanted[i], after, depth < 2 && upTo(3) == 0, depth + 1);
    addItem(before + "/mark", "mark", after, false, depth + 1);
}

std::vector<std::string> RandomPlan::finalNames(const std::vector<std::string>& names) {
    std::vector<std::string> pool = names;
    for (const char* fresh : {"new", "N\u00F6", "x:y", "z z"})
        if (upTo(2) == 0)
            pool.emplace_back(fresh);
    switch (upTo(2)) {
    case 0: // chains and cycles of neighbours
        std::rotate(pool.begin(), pool.begin() + 1, pool.end());
        break;
    case 1:
        std::shuffle(pool.begin(), pool.end(), random);
        break;
    default: // mostly as it is
        std::swap(pool.front(), pool[upTo(static_cast<unsigned>(pool.size()) - 1)]);
    }
    std::set<std::string> taken{"mark"};
    std::vector<std::string> result;
    for (const std::string& name : pool) {
        if (result.size() == names.size())
            break;
        const std::string& own = names[result.size()];
        std::string wanted = upTo(3) == 0 ? otherCase(own) : name;
        for (int i = 0; !taken.insert(lowered(wanted)).second; ++i)
            wanted = "other " + std::to_string(i);
        result.push_back(wanted);
    }
    return result;
}

std::string RandomPlan::otherCase(std::string name) {
    const std::u16string text = text::fromBytes(name);
    return text::toUtf8(upTo(1) ? text::uppercased(text) : text::lowercased(text));
}

void RandomPlan::setUp(RenameBench& bench) const {
    bench.make(made);
    bench.read({"box"});
    for (const auto& [path, finalName] : plan)
        bench.setFinalName(path, shownName(finalName));
}

/// Whether a message about something in this folder gives the name.
static bool isTold(const RenameBench& bench, const std::string& name) {
    const std::string shown = nameOnDisk::shown(name);
    return std::any_of(bench.reports.begin(), bench.reports.end(), [&](const ProblemReport& report) {
        return report.message.find("\"" + shown + "\"") != std::string::npos;
    });
}

void RandomPlan::expectNothingLost(RenameBench& bench) const {
    std::map<std::string, std::string> places; // by content
    for (const auto& [path, content] : bench.files()) {
        const std::string name = lastOf(path);
        if (content.empty()) {
            EXPECT_TRUE(isTold(bench, name)) << "left behind: " << path;
            continue;
        }
        ASSERT_TRUE(filesBefore.contains(content)) << "a strange file: " << path;
        const auto [known, isNew] = places.emplace(content, path);
        if (isNew)
            continue;
        // Of two names the one from before is the item's own, and the wanted one is not.
        std::string second = path;
        if (name == lastOf(content) || lastOf(known->second) == plan.at(content))
            std::swap(known->second, second);
        EXPECT_TRUE(isTold(bench, lastOf(second))) << content << " is there twice: " << second;
    }
    EXPECT_EQ(places.size(), filesBefore.size()) << "something is lost";
    std::map<std::string, std::string> found; // name by path before
    for (const auto& [content, path] : places) {
        const std::vector<std::string> parts = split(content, '/');
        const std::vector<std::string> names = split(path, '/');
        ASSERT_EQ(parts.size(), names.size()) << content << " has left its folder: " << path;
        std::string item;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            item += (i == 0 ? "" : "/") + parts[i];
            found[item] = names[i];
        }
    }
    int changed = 0;
    int failed = 0;
    for (const auto& [item, name] : found) {
        const std::string& wanted = plan.at(item);
        const bool isDone = name == wanted;
        changed += name != lastOf(item) ? 1 : 0;
        failed += isDone ? 0 : 1;
        EXPECT_EQ(isReported(bench, item), !isDone) << item << " was to be " << wanted << " and is " << name;
        EXPECT_TRUE(isDone || name == lastOf(item) || isTold(bench, name)) << item << " at " << name;
    }
    EXPECT_EQ(bench.renamed(), changed);
    EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, failed);
}

bool RandomPlan::isReported(const RenameBench& bench, const std::string& path) {
    const std::string full = bench.folder.path(path);
    const std::string name = "'" + nameOnDisk::shown(lastOf(path)) + "'";
    const std::string folder = full.substr(0, full.rfind('/'));
    return std::any_of(bench.reports.begin(), bench.reports.end(), [&](const ProblemReport& report) {
        return report.fullPath == full ||
               (report.fullPath.substr(0, report.fullPath.rfind('/')) == folder &&
                report.title.starts_with("Could not swap") && report.title.find(name) != std::string::npos);
    });
}

void atEachCall(const std::function<bool(const RandomPlan&, const Volume&, std::size_t call)>& reaches) {
    for (const Volume& volume : volumes) {
        // These hold rings of three and more, pairs, chains, changes of case and folders.
        for (const unsigned seed : {9U, 32U, 95U}) {
            const RandomPlan plan(seed, volume.ignoresCase);
            bool wasReached = true;
            for (std::size_t call = 1; wasReached; ++call) {
                SCOPED_TRACE(fmt::format("{}, plan {}, call {}", volume.title, seed, call));
                wasReached = reaches(plan, volume, call);
                EXPECT_TRUE(wasReached || call > 4) << "hardly anything was done";
            }
        }
    }
}

} // namespace tavrin::test
