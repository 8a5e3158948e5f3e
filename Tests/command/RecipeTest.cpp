#include "command/Workplace.h"

namespace tavrin::test {
namespace {

/// Files of many kinds.
struct RecipePlace : Workplace {
    RecipePlace() {
        EXPECT_EQ(run("touch 'IMG_4021 (1).JPG' 'a - b (copy).txt' 20240614.pdf 'Draft Plan-x.md' "
                      "'14.06.2024 été.jpeg' 'Artist - Song.mp3' CamelCase12.TXT a b 'my plan  .txt' "
                      "'a_very long name: with* ends?.text'; printf 'x\\tnew\\n' >../n.txt; "
                      "cp " TAVRIN_SOURCE_FOLDER "/Tests/samples/photo.jpg .")
                      .status,
                  0);
    }
};

// One a line: a recipe, a tab, the same in the long form.
TEST(Recipes, EverydayOnesSayWhatTheirLongFormsSay) {
    const RecipePlace place;
    const auto result = place.run(R"sh(while IFS=$'\t' read -r recipe long; do
        for form in "recipe --plist" "preview *"; do
            cmp -s <(eval "tvrn ${form%% *} -e \"\$recipe\" ${form#* } 2>&1") \
                   <(eval "tvrn ${form%% *} $long ${form#* } 2>&1") || echo "$form: $recipe"
        done
        [ "$recipe" ] && let count++
    done <"$TEST_DATA/everyday.txt"; echo $count)sh");
    EXPECT_EQ(result.output, "42\n");
    EXPECT_EQ(result.error, "");
}

// What is stored, as text, and as a list made of that text.
TEST(Recipes, TextsOfStoredOnesRenameLikeThem) {
    const RecipePlace place;
    const auto result = place.run(R"sh(for stored in "$TEST_DATA"/*.plist; do
        text=$(tvrn recipe -f "$stored")
        [ "$text" = "$(tvrn recipe --lines "$text" | tvrn recipe -f -)" ] || echo "lines of $stored"
        cmp <(tvrn preview -f "$stored" *) <(tvrn recipe --plist "$text" | tvrn preview -f - *)
        cmp <(tvrn preview -f "$stored" *) <(tvrn "$text" *)
        tvrn recipe --lines -f "$stored"
    done)sh");
    EXPECT_EQ(result.output, "# All letters small.\nlower whole\n");
    EXPECT_EQ(result.error, "");
}

} // namespace
} // namespace tavrin::test
