#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

// Each action over many names, with parameters that give it something to do: names per second. "mixed" names
// hold an accented word in three of ten, some of these decomposed.

namespace tavrin {

namespace {

constexpr std::size_t nameCount = 100000;

std::vector<std::u16string> makeNames(bool isMixed) {
    const std::u16string words[] = {u"holiday", u"IMG",     u"Report",    u"draft",
                                    u"photo",   u"Lofoten", u"annualPlan"};
    std::mt19937 random(7); // the same names in every run
    std::vector<std::u16string> names;
    for (std::size_t i = 0; i < nameCount; ++i) {
        auto name = words[random() % 7] + u"_" + words[random() % 7] + u" ";
        if (isMixed && random() % 10 < 3)
            name += random() % 10 == 0 ? u"cafe\u0301 " : u"café ";
        names.push_back(name + text::fromUtf8(std::to_string(i)) + u".jpg");
    }
    return names;
}

const PropertyDictionary& parametersForAll() {
    static const PropertyDictionary parameters{
        {"searchTerm", u"a"},
        {"replacementTerm", u"bc"},
        {"text", u"o"},
        {"string", u"x "},
        {"newName", u"name"},
        {"replace", u"img"},
        {"with", u"Photo"},
        {"position", 3},
        {"with0", u"-"},
        {"replaceCharacters0", u" _"},
        {"numberOfCharacters", 3},
        {"toMode", 1},
        {"toSearchTerm", u"o"},
        {"fromPosition", 1},
        {"toPositionNumber", 4},
        {"searchPattern", u"([A-Za-z]+)_([A-Za-z]+)"},
        {"levels", 1},
    };
    return parameters;
}

void runAction(benchmark::State& state, const ActionEntry& entry, bool isMixed) {
    const auto names = makeNames(isMixed);
    UserDefaults defaults;
    UserDefaults::setSharedInstance(&defaults);
    ActionList catalogue;
    ActionList::setSharedActionList(&catalogue);
    auto action = entry.make();
    action->setParameterList(parametersForAll());
    InputContext input;
    input.path = "/home/somebody/Pictures/2024 Lofoten/day 3/IMG_4021.JPG";
    OutputContext output;
    for (auto _ : state) {
        input.rank = 0;
        for (const auto& name : names) {
            input.currentName = name;
            ++input.rank;
            action->executeWithInputContext(input, output);
            benchmark::DoNotOptimize(output.newName.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(nameCount));
    ActionList::setSharedActionList(nullptr);
    UserDefaults::setSharedInstance(nullptr);
}

const bool areRegistered = [] {
    for (const auto& entry : allActions())
        for (const bool isMixed : {false, true})
            benchmark::RegisterBenchmark(
                (std::string(entry.name) + (isMixed ? "/mixed" : "/ascii")).c_str(),
                [entry, isMixed](benchmark::State& state) { runAction(state, entry, isMixed); })
                ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace

} // namespace tavrin
