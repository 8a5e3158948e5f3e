#include "installation/Tools.h"

#include <regex>

namespace tavrin::test {
namespace {

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
    const std::string readme = sourceFile("README.md");
    const std::size_t start = readme.find("## Five recipes");
    const std::string section = readme.substr(start, readme.find("\n## ", start) - start);
    const std::regex block("(?:    .*\n)+");
    const std::vector<std::string> blocks(std::sregex_token_iterator(section.begin(), section.end(), block),
                                          {});
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
