#include "layout/LayoutRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Layout, TheSourcesKeepTheRulesOfTheHouse) {
    const std::vector<SourceUnit> units = readSourceUnits(TAVRIN_SOURCE_FOLDER);
    EXPECT_GT(units.size(), 50u);
    EXPECT_THAT(layoutViolations(units), IsEmpty());
}

/// One unit that breaks a rule, or comes close to it, and what the check says.
struct Plant {
    const char* path;
    std::string text;
    const char* expected; ///< empty where nothing is wrong
};

class LayoutPlant : public testing::TestWithParam<Plant> {};

TEST_P(LayoutPlant, IsJudged) {
    const auto& [path, text, expected] = GetParam();
    const std::vector<std::string> found = layoutViolations({{path, text}});
    if (*expected)
        EXPECT_THAT(found, ElementsAre(std::string(path) + expected));
    else
        EXPECT_THAT(found, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    All, LayoutPlant,
    testing::Values(
        Plant{"Code/App/store/A.cpp", "\n#include \"engine/RenameEngine.h\"\n",
              ":2: store includes engine/RenameEngine.h"},
        Plant{"Code/App/engine/A.cpp", "#include \"store/A.h\"\n#include \"engine/B.h\"\n", ""},
        Plant{"Code/App/engine/A.cpp", "// #include \"shell/A.h\"\n/* #include\n\"shell/A.h\" */\n", ""},
        Plant{"Code/Command/A.cpp", "#include \"A.h\"\n#include \"shell/A.h\"\n", ""},
        Plant{"Code/Command/A.cpp", "#include \"presentation/A.h\"\n",
              ":1: Command includes presentation/A.h"},
        Plant{"Code/App/presentation/A.cpp", "#include \"Command/A.h\"\n",
              ":1: presentation includes Command/A.h"},
        Plant{"Code/App/store/A.cpp", "#include \"B.h\"\n", ":1: B.h is not named by its room"},
        Plant{"Code/App/shelf/A.cpp", "", ":1: lies in no room"},
        Plant{"Code/App/shell/A.cpp", "#include <QString>\n", ":1: Qt outside the presentation"},
        Plant{"Code/App/shell/A.cpp", "#include <QtCore/qglobal.h>\n", ":1: Qt outside the presentation"},
        Plant{"Code/App/presentation/A.cpp", "#include <QString>\n", ""},
        Plant{"Code/App/store/A.cpp", "#include <sqlite3.h>\n", ""},
        Plant{"Code/App/store/A.h", "int a;\n", ":1: no #pragma once"},
        Plant{"Code/App/engine/A.cpp", "int a = ::rename(b, c);\n",
              ":1: ::rename(: replaces files; go through the file system of platform"},
        Plant{"Code/App/engine/A.cpp",
              "files.rename(b, c); // rename(b, c)\nlog(\"rename(b)\", "
              "'x');\nFiles::rename(b);\nunrenameat(b);\nworkers.detach(b);\n",
              ""},
        Plant{"Code/App/platform/A.cpp", "int a = ::rename(b, c);\n", ""},
        Plant{"Code/App/platform/A.cpp", "std::filesystem::rename(b, c);\n",
              ":1: std::filesystem::rename(: replaces files"},
        Plant{"Code/App/engine/A.cpp", "worker.detach();\n", ":1: .detach(): a thread is waited for"},
        Plant{"Code/App/engine/A.cpp", "std::this_thread::sleep_for(1s);\n",
              ":1: sleep_for(: wait for what is to happen"},
        Plant{"Code/App/engine/A.cpp", std::string(700, '\n'), ""},
        Plant{"Code/App/engine/A.cpp", std::string(701, '\n'), ":702: the unit is too long"}));

TEST(Layout, AHeaderThatShowsAHiddenLibraryServesTheSourcesOfItsRoomOnly) {
    const SourceUnit header{"Code/App/support/Icu.h", "#pragma once\n#include <unicode/utypes.h>\n"};
    const std::string include = "#include \"support/Icu.h\"\n";
    EXPECT_THAT(layoutViolations({header, {"Code/App/support/A.cpp", include}}), IsEmpty());
    EXPECT_THAT(
        layoutViolations(
            {header, {"Code/App/support/A.h", "#pragma once\n" + include}, {"Code/App/tags/A.cpp", include}}),
        ElementsAre("Code/App/support/A.h:2: support/Icu.h shows a library that stays hidden",
                    "Code/App/tags/A.cpp:1: support/Icu.h shows a library that stays hidden"));
}

} // namespace
} // namespace tavrin
