#include "command/Workplace.h"

#include <gtest/gtest.h>

#include <map>

namespace tavrin::test {

/// On a real file system that refuses to exchange names and to rename without replacing: names as wanted, and
/// a taken one stays.
TEST(Mounts, AFileSystemWithoutFlagsServesRingsPairsCaseAndFolders) {
    const Workplace workplace;
    const ProgramResult run = workplace.run(
        "mkdir real shown && bindfs real shown || exit 77; trap 'cd ..; fusermount -u shown || umount shown' "
        "EXIT; "
        "cd shown && for f in a b c d e report.txt t taken; do echo $f >$f; done && mkdir f g && "
        "touch 'f/was f' 'g/was g' T2 && printf '%s\\n' a,b b,c c,a d,e e,d f,g g,f report.txt,REPORT.TXT "
        "t,T2 | "
        "tr , '\\t' >../list && tvrn rename --action 'Rename from list' --set listFilePath=../list "
        "--set fragmentSelection=0 a b c d e f g report.txt t");
    if (run.status == 77)
        GTEST_SKIP() << "no file system can be mounted here";
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "8 file names were changed.\n");
    EXPECT_NE(run.error.find("Another file with this name already exists in this folder."),
              std::string::npos);
    std::map<std::string, std::string> found;
    for (const auto& [path, content] : workplace.folder().tree()) {
        if (path.starts_with("real/") && path.back() != '/')
            found.emplace(path.substr(5), content);
    }
    const std::map<std::string, std::string> after{
        {"b", "a\n"},         {"c", "b\n"},    {"a", "c\n"},   {"e", "d\n"},
        {"d", "e\n"},         {"t", "t\n"},    {"T2", ""},     {"REPORT.TXT", "report.txt\n"},
        {"taken", "taken\n"}, {"g/was f", ""}, {"f/was g", ""}};
    EXPECT_EQ(found, after);
}

/// The real program, killed in the middle: what it began is taken back, or finished and then taken back.
TEST(KilledRun, IsTakenBackOrFinished) {
    const std::string killed =
        "mkdir -p d/sub; (cd d/sub; seq -f 'file%g' 20000 | xargs touch); "
        "tvrn rename --recursive --action 'Add to front' --set string=new_ d >out 2>&1 & p=$!; "
        "until ls d/sub | grep -q '^new_' || test -d new_d; do :; done; kill -9 $p; wait $p; "
        "tvrn history | cut -f 4,5; test \"$(ls d/sub | grep -c '^new_')\" -lt 20000";
    const std::string before = "test -d d && test \"$(ls d/sub | grep -c '^file')\" = 20000";
    const std::string after = "test \"$(ls new_d/new_sub | grep -c '^new_file')\" = 20000";
    for (const bool isFinished : {false, true}) {
        const Workplace workplace;
        const ProgramResult run = workplace.run(killed);
        ASSERT_EQ(run.status, 0) << run.error;
        ASSERT_EQ(run.output, "rename\tinterrupted\n");
        if (isFinished) {
            const ProgramResult redo = workplace.run("tvrn redo --quiet && " + after);
            EXPECT_EQ(redo.status, 0) << redo.error;
        }
        const ProgramResult undo = workplace.run("tvrn undo --quiet && " + before);
        EXPECT_EQ(undo.status, 0) << undo.error;
        const ProgramResult redo = workplace.run("tvrn redo --quiet; ls; tvrn undo --quiet && " + before);
        EXPECT_EQ(redo.status, 0) << redo.error;
    }
}

} // namespace tavrin::test
