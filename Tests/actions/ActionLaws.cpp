#include "actions/ActionLaws.h"

#include "common/FileTimes.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

namespace tavrin::test {

namespace {

/// Makes the file that an example tells of, under its name in a folder of its own, and gives its path.
std::string makeFile(const ActionExample& example, const std::string& parent) {
    const std::string name = text::toUtf8(example.before);
    if (!example.file.folder.empty())
        return std::string(example.file.folder) + "/" + name; // looked at as a text, so it need not exist
    const std::string path = parent + "/" + name;
    if (!example.file.sample.empty())
        std::filesystem::copy_file(TAVRIN_SOURCE_FOLDER "/Tests/samples/" + std::string(example.file.sample),
                                   path);
    else
        std::ofstream(path) << "content";
    if (!example.file.modified.empty())
        setModificationTime(path, std::string(example.file.modified));
    return path;
}

PropertyDictionary parametersOf(const ActionExample& example, const std::string& folder) {
    PropertyDictionary parameters = example.parameters;
    if (!example.file.list.empty()) {
        const std::string path = folder + "/list.txt";
        std::ofstream(path) << text::toUtf8(example.file.list);
        parameters.insert_or_assign("listFilePath", text::fromBytes(path));
    }
    return parameters;
}

/// What panels, the terminal and stored lists take for granted of a row.
void expectLawsOfRow(const BaseRenameAction& action, const ParameterDescription& row) {
    const auto rows = action.parameters();
    const auto hasRow = [&](std::string_view key) {
        return key.empty() || std::ranges::count(rows, key, &ParameterDescription::key) == 1;
    };
    EXPECT_TRUE(!row.key.empty() && hasRow(row.key));
    EXPECT_TRUE(hasRow(row.shownWhenKey) && hasRow(row.offWhenKey) && hasRow(row.besideKey));
    EXPECT_FALSE(row.label.empty());
    EXPECT_LE(row.minimum, row.maximum);
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

} // namespace

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

        const auto read = PropertyList::fromBytes(PropertyList::toXml(PropertyValue(defaultValues)));
        ASSERT_TRUE(std::holds_alternative<PropertyValue>(read));
        action->setParameterList(*std::get<PropertyValue>(read).asDictionary());
        // What an action tells the user, it may tell anew when parameters are loaded.
        for (const auto& row : action->parameters())
            if (row.kind == ParameterKind::status)
                action->setValue(propertyValue(row.whenNew), std::string(row.key));
        EXPECT_EQ(action->parameterList(), defaultValues);
    }
}

void expectExamples(const ActionEntry& entry) {
    SCOPED_TRACE(entry.name);
    auto action = entry.make();
    EXPECT_FALSE(entry.examples.empty());
    for (const auto& example : entry.examples) {
        const TemporaryFolder folder;
        const std::string path = makeFile(example, folder.path());
        action->setParameterList(action->defaultParameters());
        for (const auto& [key, value] : example.parameters)
            EXPECT_TRUE(action->parameterList().contains(key)) << key;
        for (const auto& [key, value] : parametersOf(example, folder.path()))
            action->setValue(value, key);
        const auto copyForTheRun = entry.make();
        copyForTheRun->setParameterList(action->parameterList());
        EXPECT_EQ(text::toUtf8(run(*copyForTheRun, example.before, 1, path)), text::toUtf8(example.after));
    }
}

} // namespace tavrin::test
