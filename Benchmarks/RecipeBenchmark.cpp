#include "documents/recipe/RecipeText.h"
#include "support/text/Text.h"

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

namespace {

using namespace tavrin;

/// So long as recipes may be, of a part over and over.
std::u16string longest(std::u16string_view part) {
    std::u16string text;
    while (text.size() + part.size() <= RecipeText::mostUnits)
        text += part;
    return text;
}

void read(benchmark::State& state, std::u16string_view part) {
    const std::u16string recipe = longest(part);
    for (auto _ : state)
        benchmark::DoNotOptimize(RecipeText::read(recipe));
}

BENCHMARK_CAPTURE(read, steps,
                  u"replace IMG_ \"Lofoten \" 2nd case whole | number end digits=3 order=taken | "
                  u"cut from before \"(\" to after \")\" | move \"a\" case before \"b\" last case "
                  u"off | replace-chars \" -.,:;!?()[]{}<>+*#~&%$\" \"_\" \"\\u{e9}\\u{e8}\" e\n")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, quotes, u"\"")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, oneLongText, u"é")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, separators, u";|\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, wordsOfOneStep, u"off ")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, comments, u"# comment\n")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, storedEntries, u"lower x:=[1, 2, 3] y:=\"z\"|")->Unit(benchmark::kMillisecond);

/// A mistake at the very end of the longest line.
void findMistake(benchmark::State& state) {
    std::u16string recipe = longest(u"\"\u00e9e\u0301\"");
    recipe.replace(0, 7, u"add x ''");
    recipe.resize(RecipeText::mostUnits - 4);
    for (auto _ : state)
        benchmark::DoNotOptimize(RecipeText::read(recipe));
}
BENCHMARK(findMistake)->Unit(benchmark::kMillisecond);

} // namespace
