#include "command/Workplace.h"

#include <gtest/gtest.h>

namespace tavrin::test {

/// The real program, killed in the middle: what it began is taken back, or finished and then taken back.
TEST(KilledRun, IsTakenBackOrFinished) {
    const std::string killed =
        "mkdir -p d/sub; (cd d/sub; seq -f 'file%g' 20000 | xargs touch); "
        "tvrn rename --recursive --action 'Add to front' --set string=new_ d >out 2>&1 & p=$!; "
        "until ls d/sub | grep -q '^new_'; do :; done; kill -9 $p; wait $p; "
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
