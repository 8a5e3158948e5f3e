#include "installation/Tools.h"

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

// In the order of the section: what a recipe finds in its folder, as it is made in a shell, and what it
// leaves there.
TEST(Readme, RecipesDoWhatTheySay) {
    const std::pair<const char*, const char*> recipes[] = {
        {"cp ../samples/photo.jpg DSC1.JPG; cp ../samples/photo.jpg DSC2.JPG",
         "2024-06-14 01.jpg\n2024-06-14 02.jpg\n"},
        {"cp ../samples/song.mp3 track.mp3", "03 Blue Hour.mp3\n"},
        {"mkdir -p album/day_1; touch album/day_1/a_b.txt", "album\nalbum/day 1\nalbum/day 1/a b.txt\n"},
        {"echo new >a.png; echo old >b.png; touch -d 2024-01-02 a.png; touch -d 2024-01-01 b.png",
         "Screenshot 001.png\nScreenshot 002.png\nold\nnew\n"},
        {"touch ONE TWO; editor() { sed -i s/two$/zwei/ $1; }", "one\nzwei\n"}};
    const std::vector<std::string> blocks = commandsOf("Five recipes");
    ASSERT_EQ(blocks.size(), std::size(recipes));
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto& [before, after] = recipes[i];
        const TemporaryFolder folder;
        const Variable records("XDG_STATE_HOME", folder.path("state").c_str());
        const std::string script = fmt::format(
            "exec 3>&1 &>log; trap 'cat ../log >&3' ERR; PATH={}:$PATH; ln -s {} samples; mkdir work; cd "
            "work\n"
            "{}\n{}\nexec >&3; find * | LC_ALL=C sort; cat *.png || true",
            quotedForShell(programFolder()), quotedForShell(sourcePath("Tests/samples")), before, blocks[i]);
        EXPECT_EQ(outputOf({"env", "-C", folder.path(), "bash", "-ec", script}), after);
    }
}

} // namespace
} // namespace tavrin::test
