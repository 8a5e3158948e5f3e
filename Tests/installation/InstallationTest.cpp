#include "installation/Tools.h"

namespace tavrin::test {
namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;

TEST(Installation, PutsEverythingInItsPlaceAndStillWorksWhenMoved) {
    const TemporaryFolder folder;
    (void)outputOf({TAVRIN_CMAKE, "--install", TAVRIN_BUILD_FOLDER, "--prefix", folder.path("first")});
    std::vector<std::string> installed;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path("first")))
        installed.push_back(entry.path().string().substr(folder.path("first").size() + 1));
    EXPECT_THAT(installed,
                IsSupersetOf({"bin/tvrn", "share/man/man1/tvrn.1", "share/bash-completion/completions/tvrn",
                              "share/zsh/site-functions/_tvrn", "share/fish/vendor_completions.d/tvrn.fish",
                              "share/tavrin/extract.pl"}));
#ifdef TAVRIN_HAS_WINDOW
    EXPECT_THAT(installed,
                IsSupersetOf({"bin/tavrin", "share/man/man1/tavrin.1", "share/tavrin/help/90-desktop.html",
                              "share/applications/net.calderwick.tavrin.desktop",
                              "share/metainfo/net.calderwick.tavrin.metainfo.xml",
                              "share/icons/hicolor/scalable/apps/net.calderwick.tavrin.svg",
                              "share/Thunar/sendto/net.calderwick.tavrin.desktop",
                              "share/nemo/actions/net.calderwick.tavrin.nemo_action"}));
    using std::filesystem::perms;
    EXPECT_NE(
        std::filesystem::status(folder.path("first/share/kio/servicemenus/net.calderwick.tavrin.desktop"))
                .permissions() &
            perms::owner_exec,
        perms::none);
    EXPECT_THAT(outputOf({folder.path("first/bin/tavrin"), "--version"}), HasSubstr("tavrin"));
#endif
    // Its own resources, not those of the sources.
    std::filesystem::rename(folder.path("first"), folder.path("second"));
    std::string menu = folder.read("second/share/tavrin/datePatterns menu.plist");
    menu.replace(menu.find("<string>2024-06-14<"), 19, "<string>The day itself<");
    folder.write("second/share/tavrin/datePatterns menu.plist", menu);
    EXPECT_THAT(outputOf({folder.path("second/bin/tvrn"), "actions", "Rename to date"}),
                HasSubstr("The day itself"));
}

/// The command line of a tool that judges a file of its kind.
class InstalledFile : public testing::TestWithParam<const char*> {};

TEST_P(InstalledFile, IsWithoutComplaint) {
    std::vector<std::string> words = linesOf(GetParam(), ' ');
    if (!isThere(words.front()))
        GTEST_SKIP() << words.front() << " is not installed";
    words.back() = sourcePath("Resources/" + words.back());
    const ChildProcess::Result result = run(words);
    EXPECT_EQ(result.exitStatus, 0) << result.output;
    EXPECT_THAT(result.output, testing::AnyOf("", HasSubstr("Validation was successful")));
}

INSTANTIATE_TEST_SUITE_P(
    All, InstalledFile,
    testing::Values("mandoc -Tlint -Wwarning man/tvrn.1", "mandoc -Tlint -Wwarning man/tavrin.1",
                    "desktop-file-validate desktop/net.calderwick.tavrin.desktop",
                    "desktop-file-validate menus/net.calderwick.tavrin.sendto.desktop",
                    "appstreamcli validate --no-net desktop/net.calderwick.tavrin.metainfo.xml",
                    "bash -n completions/tvrn.bash", "bash -n completions/tavrin.bash",
                    "zsh -n completions/_tvrn", "zsh -n completions/_tavrin", "fish -n completions/tvrn.fish",
                    "fish -n completions/tavrin.fish"));

TEST(Installation, TheWindowIsNoProgramForOpeningFolders) {
    EXPECT_THAT(sourceFile("Resources/desktop/net.calderwick.tavrin.desktop"),
                testing::Not(HasSubstr("MimeType")));
}

TEST(Installation, PackagesThatTheTestsAreBuiltFromAreExplained) {
    const std::string readme = sourceFile("README.md");
    for (const std::string& package : linesOf(sourceFile("packages.txt"))) {
        if (!package.starts_with('#')) {
            EXPECT_THAT(readme, HasSubstr(package));
        }
    }
}

} // namespace
} // namespace tavrin::test
