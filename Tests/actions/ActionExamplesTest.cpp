#include "actions/CatalogueFixture.h"
#include "common/FileTimes.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <filesystem>
#include <fstream>

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

using ActionExamples = CatalogueFixture;

TEST_F(ActionExamples, GiveWhatTheyPromise) {
    for (const auto& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        auto action = entry.make();
        const auto examples = action->examples();
        EXPECT_FALSE(examples.empty());
        for (const auto& example : examples) {
            const TemporaryFolder folder;
            const std::string path = makeFile(example, folder.path());
            action->setParameterList(action->defaultParameters());
            for (const auto& [key, value] : example.parameters)
                EXPECT_TRUE(action->parameterList().contains(key)) << key;
            for (const auto& [key, value] : parametersOf(example, folder.path()))
                action->setValue(value, key);
            const auto copyForTheRun = entry.make();
            copyForTheRun->setParameterList(action->parameterList());
            EXPECT_EQ(text::toUtf8(run(*copyForTheRun, example.before, 1, path)),
                      text::toUtf8(example.after));
        }
    }
}

} // namespace

} // namespace tavrin::test
