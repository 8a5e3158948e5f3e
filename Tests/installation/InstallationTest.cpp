#include "installation/Tools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tavrin::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

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

/// A file that a tool of its kind judges.
struct Judged {
    std::vector<std::string> tool;
    const char* file;
};

class InstalledFile : public testing::TestWithParam<Judged> {};

TEST_P(InstalledFile, IsWithoutComplaint) {
    auto [arguments, file] = GetParam();
    if (!isThere(arguments.front()))
        GTEST_SKIP() << arguments.front() << " is not installed";
    arguments.push_back(sourcePath(file));
    const ChildProcess::Result result = run(arguments);
    EXPECT_EQ(result.exitStatus, 0) << result.output;
    EXPECT_THAT(result.output, testing::AnyOf("", HasSubstr("Validation was successful")));
}

INSTANTIATE_TEST_SUITE_P(
    All, InstalledFile,
    testing::Values(Judged{{"mandoc", "-Tlint", "-Wwarning"}, "Resources/man/tvrn.1"},
                    Judged{{"mandoc", "-Tlint", "-Wwarning"}, "Resources/man/tavrin.1"},
                    Judged{{"desktop-file-validate"}, "Resources/desktop/net.calderwick.tavrin.desktop"},
                    Judged{{"desktop-file-validate"}, "Resources/menus/net.calderwick.tavrin.sendto.desktop"},
                    Judged{{"appstreamcli", "validate", "--no-net"},
                           "Resources/desktop/net.calderwick.tavrin.metainfo.xml"}));

TEST(Installation, TheWindowIsNoProgramForOpeningFolders) {
    EXPECT_THAT(sourceFile("Resources/desktop/net.calderwick.tavrin.desktop"), Not(HasSubstr("MimeType")));
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
