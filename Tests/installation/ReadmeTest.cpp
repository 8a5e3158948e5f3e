#include "common/FileTimes.h"
#include "common/Variable.h"
#include "installation/Tools.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tavrin::test {
namespace {

/// The blocks of commands of a section, without their indent.
std::vector<std::string> commandsOf(const std::string& section) {
    std::vector<std::string> blocks;
    bool isWithin = false;
    bool isOpen = false;
    for (const std::string& line : linesOf(sourceFile("README.md"))) {
        if (line.starts_with("## "))
            isWithin = line == "## " + section;
        const bool isCommand = isWithin && line.starts_with("    ");
        if (isCommand && !isOpen)
            blocks.emplace_back();
        if (isCommand)
            blocks.back() += line.substr(4) + '\n';
        isOpen = isCommand;
    }
    return blocks;
}

/// What a recipe finds in the folder "work" and what it leaves there, in the order of the section.
struct Recipe {
    const char* name;
    std::function<void(const TemporaryFolder&)> prepare;
    std::vector<std::string> after;
};

void copySample(const TemporaryFolder& folder, const char* sample, const char* name) {
    std::filesystem::copy_file(sourcePath(std::string("Tests/samples/") + sample),
                               folder.path(std::string("work/") + name));
}

const std::vector<Recipe>& recipes() {
    static const std::vector<Recipe> all{
        {"photographs",
         [](const TemporaryFolder& folder) {
             copySample(folder, "photo.jpg", "DSC1.JPG");
             copySample(folder, "photo.jpg", "DSC2.JPG");
         },
         {"2024-06-14 01.jpg", "2024-06-14 02.jpg"}},
        {"songs",
         [](const TemporaryFolder& folder) { copySample(folder, "song.mp3", "track.mp3"); },
         {"03 Blue Hour.mp3"}},
        {"blanks",
         [](const TemporaryFolder& folder) { folder.write("work/album/day_1/a_b.txt"); },
         {"album/", "album/day 1/", "album/day 1/a b.txt"}},
        {"screenshots",
         [](const TemporaryFolder& folder) {
             setModificationTime(folder.write("work/a.png", "new"), "2024-01-02 00:00:00");
             setModificationTime(folder.write("work/b.png", "old"), "2024-01-01 00:00:00");
         },
         {"Screenshot 001.png", "Screenshot 002.png"}},
        {"by hand",
         [](const TemporaryFolder& folder) {
             folder.write("work/ONE");
             folder.write("work/TWO");
         },
         {"one", "zwei"}},
    };
    return all;
}

TEST(Readme, RecipesDoWhatTheySay) {
    const std::vector<std::string> blocks = commandsOf("Five recipes");
    ASSERT_EQ(blocks.size(), recipes().size());
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const Recipe& recipe = recipes()[i];
        SCOPED_TRACE(recipe.name);
        const TemporaryFolder folder;
        const Variable records("XDG_STATE_HOME", folder.path("state").c_str());
        const std::string work = folder.makeFolder("work");
        recipe.prepare(folder);
        (void)outputOf({"bash", "-ec",
                        fmt::format("PATH={}:$PATH; editor() {{ sed -i s/two$/zwei/ \"$1\"; }}; cd {}\n{}",
                                    quotedForShell(programFolder()), quotedForShell(work), blocks[i])});
        std::vector<std::string> names;
        for (const auto& [name, content] : folder.tree()) {
            if (name.starts_with("work/") && name != "work/")
                names.push_back(name.substr(5));
        }
        EXPECT_EQ(names, recipe.after);
        if (recipe.name == std::string("screenshots")) {
            EXPECT_EQ(folder.read("work/Screenshot 001.png"), "old");
        }
    }
}

} // namespace
} // namespace tavrin::test
