#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

/// The text functions that run once or more per name: nanoseconds per name of about 30 units.
namespace tavrin {
namespace {

enum Kind { ascii, mixed, accented, markedApart, han, kindCount };
constexpr std::array<const char*, kindCount> kindNames = {"ascii", "one in ten accented", "accented",
                                                          "accents as marks", "han"};

std::u16string nameOf(Kind kind, int number) {
    const bool isAccented = kind != ascii && (kind != mixed || number % 10 == 0);
    std::u16string stem = isAccented ? u"Été à la plage, Zürich " : u"Summer on the beach, Rome ";
    if (kind == markedApart)
        stem = text::decomposed(stem);
    if (kind == han)
        stem = u"夏日海滩照片与朋友们在罗马和其他地方的旅行记录 ";
    return stem + text::fromUtf8(std::to_string(1000 + number)) + u".JPG";
}

struct Names {
    explicit Names(Kind kind) {
        for (int i = 0; i < 1000; ++i) {
            texts.push_back(nameOf(kind, i));
            bytes.push_back(*text::toBytes(texts.back()));
        }
    }
    std::vector<std::u16string> texts;
    std::vector<std::string> bytes;
};

template <typename Function> void eachName(benchmark::State& state, Function function) {
    const auto kind = static_cast<Kind>(state.range(0));
    const Names names(kind);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(function(names, i));
        i = i + 1 == names.texts.size() ? 0 : i + 1;
    }
    state.SetLabel(kindNames[kind]);
}

/// A function of a text.
template <auto function> void ofText(benchmark::State& state) {
    eachName(state, [](const Names& names, std::size_t i) { return function(names.texts[i]); });
}

void fromBytes(benchmark::State& state) {
    std::u16string buffer;
    eachName(state, [&](const Names& names, std::size_t i) {
        text::fromBytes(names.bytes[i], buffer);
        return buffer.data();
    });
}

void toBytes(benchmark::State& state) {
    std::string buffer;
    eachName(state, [&](const Names& names, std::size_t i) { return text::toBytes(names.texts[i], buffer); });
}

void lowercaseBytes(benchmark::State& state) {
    std::string buffer;
    eachName(state, [&](const Names& names, std::size_t i) {
        text::lowercaseBytes(names.bytes[i], buffer);
        return buffer.data();
    });
}

void canonicallyEqual(benchmark::State& state) {
    eachName(state, [](const Names& names, std::size_t i) {
        return text::canonicallyEqual(names.texts[i], names.texts[(i + 1) % names.texts.size()]);
    });
}

template <CaseSensitivity sensitivity> void searchFirst(benchmark::State& state) {
    const TextSearch search(u"00", sensitivity);
    eachName(state, [&](const Names& names, std::size_t i) { return search.first(names.texts[i]); });
}

void searchLast(benchmark::State& state) {
    const TextSearch search(u"A", CaseSensitivity::insensitive);
    eachName(state, [&](const Names& names, std::size_t i) {
        return search.last(names.texts[i], {0, names.texts[i].size()});
    });
}

void allKinds(benchmark::internal::Benchmark* benchmark) { benchmark->DenseRange(0, kindCount - 1); }

BENCHMARK(fromBytes)->Apply(allKinds);
BENCHMARK(toBytes)->Apply(allKinds);
BENCHMARK(lowercaseBytes)->Apply(allKinds);
BENCHMARK(ofText<text::precomposed>)->Name("precomposed")->Apply(allKinds);
BENCHMARK(ofText<text::isPrecomposed>)->Name("isPrecomposed")->Apply(allKinds);
BENCHMARK(ofText<text::decomposed>)->Name("decomposed")->Apply(allKinds);
BENCHMARK(canonicallyEqual)->Apply(allKinds);
BENCHMARK(ofText<text::lowercased>)->Name("lowercased")->Apply(allKinds);
BENCHMARK(ofText<text::uppercased>)->Name("uppercased")->Apply(allKinds);
BENCHMARK(ofText<text::withoutDiacritics>)->Name("withoutDiacritics")->Apply(allKinds);
BENCHMARK(ofText<text::composedSequences>)->Name("composedSequences")->Apply(allKinds);
BENCHMARK(ofText<KQStringUtilities::expandNumberBlocks>)->Name("expandNumberBlocks")->Apply(allKinds);
BENCHMARK(searchFirst<CaseSensitivity::sensitive>)->Name("search")->Apply(allKinds);
BENCHMARK(searchFirst<CaseSensitivity::insensitive>)->Name("search ignoring case")->Apply(allKinds);
BENCHMARK(searchLast)->Name("search backwards ignoring case")->Apply(allKinds);

} // namespace
} // namespace tavrin
