#include "actions/ActionError.h"
#include "actions/AddedAction.h"
#include "actions/CatalogueFixture.h"
#include "common/ManualRunLoop.h"

#include <unicode/unistr.h>

#include <regex>

namespace tavrin::test {

namespace {

// ---- laws of every action

/// What panels, the terminal and stored lists take for granted of a row.
void expectLawsOfRow(const BaseRenameAction& action, const ParameterDescription& row) {
    const auto rows = action.parameters();
    const auto hasRow = [&](std::string_view key) {
        return key.empty() || std::ranges::count(rows, key, &ParameterDescription::key) == 1;
    };
    EXPECT_TRUE(!row.key.empty() && hasRow(row.key));
    EXPECT_TRUE(hasRow(row.shownWhenKey) && hasRow(row.offWhenKey) && hasRow(row.besideKey));
    EXPECT_FALSE(row.label.empty());
    if (const auto* number = std::get_if<std::int32_t>(&row.whenNew)) {
        EXPECT_TRUE(row.minimum <= *number && *number <= row.maximum);
    }
    EXPECT_NE(row.isText(), row.kind == ParameterKind::number || row.kind == ParameterKind::choice ||
                                row.kind == ParameterKind::checkbox);
    EXPECT_EQ(row.choices.empty(), row.kind != ParameterKind::choice && row.kind != ParameterKind::checkbox);
    std::set<std::int32_t> values;
    std::set<std::string_view> labels;
    for (const auto& choice : row.choices) {
        EXPECT_TRUE(values.insert(choice.value).second) << choice.value;
        EXPECT_TRUE(!choice.label.empty() && labels.insert(choice.label).second) << choice.label;
    }
    EXPECT_TRUE(values.empty() || values.contains(std::get<std::int32_t>(row.whenNew)));
    // What decides whether it counts can have that value.
    for (const auto& [key, value] :
         {std::pair(row.shownWhenKey, row.shownWhenValue), std::pair(row.offWhenKey, row.offWhenValue)}) {
        if (const auto other = std::ranges::find(rows, key, &ParameterDescription::key);
            other != rows.end()) {
            EXPECT_EQ(std::ranges::count(other->choices, value, &ParameterChoice::value), 1);
        }
    }
}

/// Names and labels are unique, the parameters make sense, and survive being stored and loaded.
void expectLaws(ActionList& list, const std::vector<ActionEntry>& entries) {
    std::set<std::string_view> names;
    std::set<std::string_view> labels;
    for (const auto& entry : entries) {
        SCOPED_TRACE(entry.name);
        EXPECT_TRUE(!entry.name.empty() && names.insert(entry.name).second);
        EXPECT_TRUE(!entry.label.empty() && labels.insert(entry.label).second);
        const std::string name(entry.name);
        EXPECT_EQ(list.nameForPopUpIndex(list.popUpMenuIndexForName(name).value()), name);
        auto action = list.newActionForName(name);
        EXPECT_EQ(action->actionName(), name);
        EXPECT_EQ(text::toUtf8(list.popUpMenuItemStringForName(name)), entry.label);
        const auto defaultValues = action->defaultParameters();
        EXPECT_EQ(action->parameterList(), defaultValues);
        for (const auto& row : action->parameters()) {
            SCOPED_TRACE(row.key);
            expectLawsOfRow(*action, row);
        }

        action->setParameterList(storedAndRead(defaultValues));
        // What an action tells the user, it may tell anew when parameters are loaded.
        for (const auto& row : action->parameters())
            if (row.kind == ParameterKind::status)
                action->setValue(propertyValue(row.whenNew), std::string(row.key));
        EXPECT_EQ(action->parameterList(), defaultValues);
    }
}

// ---- cases and examples

/// What an action is to make of a name.
struct ActionCase {
    PropertyDictionary parameters;    ///< beside the defaults
    PropertyDictionary circumstances; ///< as the README of the case tables tells them
    std::u16string name, expected;
};

/// Runs the case, twice; files that it needs go into the folder.
void expectCase(BaseRenameAction& action, const ActionCase& each, const TemporaryFolder& folder) {
    const auto told = [&](std::string_view key) {
        const auto* value = find(each.circumstances, key);
        return value ? text::toUtf8(textValue(*value)) : "";
    };
    action.setParameterList(action.defaultParameters());
    for (const auto& [key, value] : each.parameters)
        ASSERT_TRUE(action.parameterList().contains(key)) << key;
    auto parameters = each.parameters;
    if (each.circumstances.contains("@list"))
        parameters.insert_or_assign("listFilePath", text::fromBytes(folder.write("list", told("@list"))));
    action.setParameterList(parameters);
    auto path = told("@path");
    if (const auto sample = told("@sample"); !sample.empty()) {
        path = folder.path(sample);
        std::filesystem::copy_file(TAVRIN_SOURCE_FOLDER "/Tests/samples/" + sample, path,
                                   std::filesystem::copy_options::skip_existing);
    }
    if (const auto modified = told("@modified"); !modified.empty()) {
        path = path.empty() ? folder.write("file") : path;
        setModificationTime(path, modified);
    }
    const auto number = [&](std::string_view key) {
        const auto* value = find(each.circumstances, key);
        return value ? intValue(*value) : 1;
    };
    for (const auto* use : {"first use", "second use"}) {
        EXPECT_EQ(run(action, each.name, number("@rank"), path, number("@last")), each.expected) << use;
        run(action, u"Some Oth\u00e9r-name e\u0301 aBc.ext");
    }
}

void expectExamples(const ActionEntry& entry) {
    SCOPED_TRACE(entry.name);
    EXPECT_FALSE(entry.examples.empty());
    for (const auto& [parameters, before, after, file] : entry.examples) {
        EXPECT_NE(before, after);
        const TemporaryFolder folder;
        const std::string name = text::toUtf8(before);
        const auto path = file.folder.empty() ? folder.write(name, "content")
                                              : std::string(file.folder).append("/").append(name);
        PropertyDictionary circumstances{{"@path", text::fromBytes(path)}};
        for (const auto& [key, told] : {std::pair("@modified", file.modified), {"@sample", file.sample}})
            if (!told.empty())
                circumstances.emplace(key, text::fromUtf8(told));
        if (!file.list.empty())
            circumstances.emplace("@list", std::u16string(file.list));
        const auto edited = entry.make();
        for (const auto& [key, value] : parameters)
            edited->setValue(value, key);
        for (const auto& row : edited->parameters()) // what it has no use for may be anything
            if (!edited->hasUseFor(row))
                edited->setValue(row.isText() ? PropertyValue(u"x") : PropertyValue(3), std::string(row.key));
        expectCase(*entry.make(), {edited->parameterList(), circumstances, before, after}, folder);
    }
}

std::u16string unescaped(const std::string& utf8) {
    const auto text = icu::UnicodeString::fromUTF8(utf8).unescape();
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

/// The action and the case of a line of a table; README there tells the format. Throws std::runtime_error for
/// anything else.
std::pair<std::string, ActionCase> caseOf(const std::string& line) {
    static const std::string text = R"~("((?:[^"\\]|\\(?:["\\nr]|x\{[[:xdigit:]]{1,5}\}))*)")~";
    static const std::regex columns(R"(([^|]+) \| (.*?) ?\| )" + text + R"( \| )" + text);
    static const std::regex parameter("([@\\w]+) = (?:(-?\\d+)|" + text + ")(?:, |$)");
    std::smatch found;
    if (!std::regex_match(line, found, columns))
        throw std::runtime_error("no case: " + line);
    const std::string action = found[1];
    ActionCase each{{}, {}, unescaped(found[3]), unescaped(found[4])};
    for (std::string rest = found[2]; !rest.empty(); rest = found.suffix()) {
        if (!std::regex_search(rest, found, parameter, std::regex_constants::match_continuous))
            throw std::runtime_error("no parameter: " + rest);
        const auto value =
            found[2].matched ? PropertyValue(std::stoi(found[2])) : PropertyValue(unescaped(found[3]));
        auto& list = rest.starts_with('@') ? each.circumstances : each.parameters;
        if (!list.emplace(found[1], value).second)
            throw std::runtime_error("key told twice: " + line);
    }
    return {action, each};
}

using Catalogue = CatalogueFixture;

class Nothing : public BaseRenameAction {};

// Each action serves for all its cases: nothing of other names and parameters may show in the next.
TEST_F(Catalogue, GivesTheNamesOfTheCases) {
    const TemporaryFolder folder;
    std::map<std::string, std::unique_ptr<BaseRenameAction>> actions;
    for (const auto& entry : std::filesystem::directory_iterator(TAVRIN_TEST_DATA "/cases")) {
        std::ifstream table(entry.path());
        std::string line;
        while (entry.path().extension() == ".txt" && std::getline(table, line)) {
            if (line.empty() || line.starts_with('#'))
                continue;
            SCOPED_TRACE(entry.path().filename().string() + ": " + line);
            const auto [name, each] = caseOf(line);
            auto& action = actions[name];
            if (!action)
                action = make(name);
            expectCase(*action, each, folder);
        }
    }
    EXPECT_FALSE(actions.empty());
}

// Laws of whole families, over names that an author of cases would not think of.
TEST_F(Catalogue, KeepsTheLawsOfFamilies) {
    std::vector<std::u16string> names{u"abcabc.txt",           u"", u"b", u".b", u"\u00e9b\u0301B", u"b\r\nb",
                                      u"b\xDC80-b\xD83D\xDE00"};
    names.emplace_back(3000, u'b');
    for (const auto& name : names) {
        for (const auto* mover : {"Move text to front", "Move text to end",
                                  "Move text in front of existing text", "Move text after existing text"}) {
            const auto action = make(mover, {{"text", u"b"}, {"searchTerm", u"a"}, {"fragmentSelection", 0}});
            const auto moved = run(*action, name);
            EXPECT_TRUE(std::is_permutation(moved.begin(), moved.end(), name.begin(), name.end()))
                << mover << ": " << text::toUtf8(name) << " -> " << text::toUtf8(moved);
        }
        // What nobody asked to change stays, for every action that has something to look for.
        for (const auto* seeker : {"Replace text", "Remove text", "Replace characters", "Replace at front",
                                   "Replace at end", "Insert in front of text", "Insert at end of text"}) {
            const auto action = make(seeker, {{"replacementTerm", u"X"}, {"with", u"X"}, {"text", u"X"}});
            EXPECT_TRUE(text::canonicallyEqual(run(*action, name), name))
                << seeker << ": " << text::toUtf8(name);
        }
    }
}

// ---- regular expressions

TEST_F(Catalogue, HoldsExpressionsThatPublishTheirGroups) {
    const struct {
        std::u16string pattern, replacement, name;
        std::array<std::u16string, 6> expected;
    } cases[] = {
        {u"(\\d+)-(\\d+)", u"\\2_$1", u"x12-34y", {u"12", u"34"}},
        {u"(a)(b)(c)(d)(e)(f)(g)", u"x", u"abcdefg", {u"a", u"b", u"c", u"d", u"e", u"f"}},
        {u"(a)(b)?", u"x", u"ac", {u"a", u""}},
        {u"(a)", u"$2", u"a", {u"a"}},            // the template names a missing group
        {u"(a)", u"", u"a", {u"a"}},              // the result is empty
        {u"(?=(b))", u"x", u"ab", {u"b"}},        // the match is empty
        {u"(x)", u"x", u"ab", {}},                // no match
        {u"(", u"x", u"ab", {}},                  // no pattern
        {u"(.+)", u"x", u"e\u0301", {u"\u00e9"}}, // in form C
    };
    for (const auto& each : cases) {
        InputContext input;
        OutputContext output;
        input.currentName = each.name;
        make("Reg Ex Replacement", {{"searchPattern", each.pattern}})->executeWithInputContext(input, output);
        EXPECT_EQ(output.regex, std::nullopt);
        make("Reg Ex Substitution", {{"searchPattern", each.pattern}, {"replacementTerm", each.replacement}})
            ->executeWithInputContext(input, output);
        EXPECT_EQ(output.regex, each.expected);
    }
}

// Each group brings in what stands for the next, many times over.
TEST_F(Catalogue, HoldsExpressionsThatKeepANameThatWouldGrowWithoutEnd) {
    std::u16string references;
    for (char16_t group = u'0'; group <= u'8'; ++group)
        for (int i = 0; i < 7; ++i)
            references += {u'\\', group, u'$', group};
    const auto action =
        make("Reg Ex Substitution", {{"searchPattern", u"((((((((.*))))))))"},
                                     {"replacementTerm", u"\\0$0\\1$1\\2$2\\3$3\\4$4\\5$5\\6$6\\7$7\\8$8"}});
    EXPECT_EQ(run(*action, references), references);
    EXPECT_EQ(run(*action, u"a"), std::u16string(18, u'a'));
}

// ---- the catalogue

TEST_F(Catalogue, MapsMenusToCategories) {
    using enum ActionCategory;
    ActionList list({{"c", "C", {}, move, newAction<Nothing>, {}},
                     {"a", "A", {}, replace, newAction<Nothing>, {}},
                     {"b", "B", {}, replace, newAction<Nothing>, {}}});
    EXPECT_EQ(list.nameArray(), (std::vector<std::string>{"a", "b", "", "c"}));
    EXPECT_EQ(list.popUpMenuItems(), (std::vector<std::u16string>{u"A", u"B", u"", u"C"}));
    EXPECT_EQ(list.categoryPopUpMenuItems(), (std::vector<std::u16string>{u"Replace", u"Move"}));
    EXPECT_EQ(list.categoryToActionMapping(), (std::vector<std::vector<std::int32_t>>{{0, 1}, {3}}));
    for (const auto& [index, category] : {std::pair(0, 0), {1, 0}, {2, 0}, {3, 1}})
        EXPECT_EQ(list.translateActionIndexToCategoryIndex(index), category);
    EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(1), 3);
    EXPECT_EQ(list.getItemNamesForCategory(0), (std::vector<std::u16string>{u"A", u"B"}));
    EXPECT_EQ(list.popUpMenuItemStringForName("c"), u"C");
    EXPECT_EQ(list.popUpMenuItemStringForName("no such action"), u"Error");
    EXPECT_EQ(list.popUpMenuIndexForName("c"), 3);
    EXPECT_EQ(list.popUpMenuIndexForName("no such action"), std::nullopt);
    EXPECT_EQ(list.nameForPopUpIndex(1), "b");
    EXPECT_THAT(
        [&] { (void)list.newActionForName("none"); },
        ::testing::ThrowsMessage<UnknownActionError>(
            "!!!!Couldn't load new action 'none' from nib with nameToNibMapping: \"a\", \"b\", \"c\""));
    for (const std::int32_t outside : {-1, 4, 2147483647}) {
        EXPECT_EQ(list.nameForPopUpIndex(outside), "");
        EXPECT_EQ(list.translateActionIndexToCategoryIndex(outside), std::nullopt);
        EXPECT_EQ(list.getFirstActionIndexForCategoryIndex(outside), std::nullopt);
        EXPECT_TRUE(list.getItemNamesForCategory(outside).empty());
    }
}

TEST_F(Catalogue, HoldsActionsThatKeepItsLaws) {
    expectLaws(catalogue, allActions());
    for (const auto& entry : allActions())
        expectExamples(entry);
    EXPECT_EQ(catalogue.newActionForName("Replace at front")->userDescription(), u"Replace at start");
}

TEST_F(Catalogue, StartsAnActionWithTheParametersLastSaved) {
    const auto action = make("Add to end", {{"string", u"-x"}});
    const auto other = make("Add to front");
    catalogue.saveActionParametersToPreferences(*action);
    catalogue.saveActionParametersToPreferences(*other);
    EXPECT_EQ(make("Add to end")->parameterList(), action->parameterList());
    // An entry from before a parameter came in, in the key form of its time.
    defaults.setObject("actions",
                       PropertyDictionary{{"Add to end", PropertyDictionary{{"fragment selection", 3}}}});
    EXPECT_EQ(make("Add to end")->getParamInt("fragmentSelection", 9), 3);
    EXPECT_EQ(make("Add to end")->valueForKey("string"), PropertyValue(u""));
    for (const PropertyValue& wrong :
         {PropertyValue(u"text"), PropertyValue(PropertyDictionary{{"Add to end", 1}})}) {
        defaults.setObject("actions", wrong);
        EXPECT_EQ(make("Add to end")->parameterList(), other->parameterList());
    }
}

TEST_F(Catalogue, ObservesOnlyWhatTheInterfaceEdits) {
    RecordingObserver observer;
    catalogue.setObserver(&observer);
    const auto edited = make("Add to end");
    const auto copy = catalogue.newActionForName("Add to end", ActionUse::privateRun);
    copy->setValue(u"a", "string");
    edited->setValue(u"b", "string");
    catalogue.setObserver(nullptr);
    edited->setValue(u"c", "string");
    EXPECT_EQ(observer.changes, (std::vector<RecordingObserver::Change>{{"string", u"", u"b"}}));
}

TEST_F(Catalogue, MakesActionsOnTheMainThread) {
    ManualRunLoop loop;
    static const auto mainThread = std::this_thread::get_id();
    static std::atomic<int> madeElsewhere;
    madeElsewhere = 0;
    constexpr auto create = []() -> std::unique_ptr<BaseRenameAction> {
        madeElsewhere += std::this_thread::get_id() != mainThread;
        return std::make_unique<Nothing>();
    };
    ActionList list({{"a", "A", {}, ActionCategory::move, create, {}}});
    list.setRunLoop(&loop);
    int done = 0;
    std::vector<std::thread> workers;
    for (int i = 0; i < 4; ++i)
        workers.emplace_back([&] {
            EXPECT_EQ(list.newActionForName("a")->actionName(), "a");
            EXPECT_THROW((void)list.newActionForName("unknown"), UnknownActionError);
            loop.post([&] { ++done; });
        });
    // The main thread makes some too, while workers wait for it.
    EXPECT_TRUE(loop.runUntil([&] {
        EXPECT_NE(list.newActionForName("a"), nullptr);
        return done == 4;
    }));
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(madeElsewhere, 0);

    loop.close();
    std::thread late([&] { EXPECT_NE(list.newActionForName("a"), nullptr); });
    late.join();
}

// ---- what docs/adding-an-action.md shows is true

TEST_F(Catalogue, TakesTheActionOfThePageOnAddingOne) {
    auto entries = addedActions();
    ASSERT_EQ(entries.size(), 1U);
    for (const auto& entry : allActions())
        entries.push_back(entry);
    ActionList list(entries);
    expectLaws(list, entries);
    expectExamples(entries.front());
}

std::string contentOf(const std::string& name) {
    std::ostringstream content;
    content << std::ifstream(TAVRIN_SOURCE_FOLDER + name).rdbuf();
    return content.str();
}

TEST_F(Catalogue, HoldsTheActionThatThePageShows) {
    const auto page = contentOf("/docs/adding-an-action.md");
    const auto unit = contentOf("/Code/App/actions/characters/CharacterSetActions.cpp");
    const std::string opening = "```cpp real\n";
    int count = 0;
    for (auto at = page.find(opening); at != page.npos; at = page.find(opening, at + 1), ++count) {
        const auto start = at + opening.size();
        const auto shown = page.substr(start, page.find("```", start) - start);
        EXPECT_NE(unit.find(shown), unit.npos) << shown;
    }
    EXPECT_EQ(count, 2);
}

} // namespace

} // namespace tavrin::test
