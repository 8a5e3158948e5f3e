#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"

#include <benchmark/benchmark.h>

#include <string>

// The actions that put dates into names, for a file that is there: names per second. "modified" asks the file
// for each name, "now" shows what the text itself costs.

namespace tavrin {

namespace {

void runDateAction(benchmark::State& state, const ActionEntry& entry, std::int32_t mode) {
    constexpr std::int64_t nameCount = 100000;
    UserDefaults defaults;
    UserDefaults::setSharedInstance(&defaults);
    ActionList catalogue;
    ActionList::setSharedActionList(&catalogue);
    const auto action = entry.make();
    action->setParameterList({{"mode", mode}, {"searchTerm", u"m"}});
    InputContext input;
    input.path = TAVRIN_SAMPLES "/photo.jpg";
    input.currentName = u"IMG_4021.jpg";
    OutputContext output;
    for (auto _ : state) {
        for (std::int64_t i = 0; i < nameCount; ++i)
            action->executeWithInputContext(input, output);
        benchmark::DoNotOptimize(output.newName.data());
    }
    if (output.newName == input.currentName)
        state.SkipWithError("the file has no date");
    state.SetItemsProcessed(state.iterations() * nameCount);
    ActionList::setSharedActionList(nullptr);
    UserDefaults::setSharedInstance(nullptr);
}

const bool areRegistered = [] {
    for (const auto& entry : dateActions())
        for (const auto& [mode, label] : {std::pair(1, "/modified"), std::pair(3, "/now")})
            benchmark::RegisterBenchmark(
                (std::string(entry.name) + label).c_str(),
                [entry, m = mode](benchmark::State& state) { runDateAction(state, entry, m); })
                ->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace

} // namespace tavrin
