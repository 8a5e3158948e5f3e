#include "actions/ActionLaws.h"

#include "common/FileTimes.h"
#include "support/text/Text.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace tavrin::test {

namespace {

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

        action->setParameterList(storedAndRead(defaultValues));
        // What an action tells the user, it may tell anew when parameters are loaded.
        for (const auto& row : action->parameters())
            if (row.kind == ParameterKind::status)
                action->setValue(propertyValue(row.whenNew), std::string(row.key));
        EXPECT_EQ(action->parameterList(), defaultValues);
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
        expectCase(*entry.make(), {edited->parameterList(), circumstances, before, after}, folder);
    }
}

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
    const auto* const rank = find(each.circumstances, "@rank");
    for (const auto* use : {"first use", "second use"}) {
        EXPECT_EQ(run(action, each.name, rank ? intValue(*rank) : 1, path), each.expected) << use;
        run(action, u"Some Oth\u00e9r-name e\u0301 aBc.ext");
    }
}

} // namespace tavrin::test
