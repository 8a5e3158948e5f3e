#include "actions/ActionList.h"
#include "actions/list/RenameFromListAction.h"
#include "support/text/Text.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

// The reading of list files as long as they may be, and the finding of names in them.

namespace tavrin {

namespace {

constexpr int lineCount = 500000;
const std::string folder = "/home/somebody/Pictures/2024/Lofoten/";

std::string nameOf(int index) {
    return "IMG_" + std::to_string(index * 7919 % lineCount) + " caf\xC3\xA9.jpg";
}

/// A list file for the length of a benchmark.
class ListOnDisk {
  public:
    explicit ListOnDisk(bool hasTwoColumns) {
        std::ofstream file(path);
        for (int i = 0; i < lineCount; ++i)
            file << (hasTwoColumns ? folder + nameOf(i) + "\t" : "") << "Harbour " << i << ".jpg\n";
    }
    ~ListOnDisk() { std::filesystem::remove(path); }
    ListOnDisk(const ListOnDisk&) = delete;
    ListOnDisk& operator=(const ListOnDisk&) = delete;

    const std::string path =
        (std::filesystem::temp_directory_path() / ("tavrin-list-" + std::to_string(::getpid()))).string();
};

class WithCatalogue {
  public:
    WithCatalogue() { ActionList::setSharedActionList(&catalogue); }
    ~WithCatalogue() { ActionList::setSharedActionList(nullptr); }
    WithCatalogue(const WithCatalogue&) = delete;
    WithCatalogue& operator=(const WithCatalogue&) = delete;

  private:
    ActionList catalogue{{}};
};

void readList(benchmark::State& state, bool hasTwoColumns) {
    const WithCatalogue catalogue;
    const ListOnDisk list(hasTwoColumns);
    for (auto _ : state) {
        RenameFromListAction action;
        action.load(text::fromBytes(list.path));
        if (!action.failure().empty())
            state.SkipWithError("nothing was loaded");
    }
    state.SetItemsProcessed(state.iterations() * lineCount);
}

void findNames(benchmark::State& state) {
    const WithCatalogue catalogue;
    const ListOnDisk list(true);
    RenameFromListAction action;
    action.load(text::fromBytes(list.path));
    InputContext input;
    input.currentName = u"IMG_1 caf\u00e9.jpg";
    OutputContext output;
    int index = 0;
    for (auto _ : state) {
        input.path = folder + nameOf(index = (index + 1) % lineCount);
        action.executeWithInputContext(input, output);
        if (output.newName == input.currentName)
            state.SkipWithError("a name was not found");
    }
    state.SetItemsProcessed(state.iterations());
}

const bool areRegistered = [] {
    for (const bool hasTwoColumns : {false, true})
        benchmark::RegisterBenchmark(
            hasTwoColumns ? "read list/two columns" : "read list/one column",
            [hasTwoColumns](benchmark::State& state) { readList(state, hasTwoColumns); })
            ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("find names in list", findNames)->Unit(benchmark::kMicrosecond);
    return true;
}();

} // namespace

} // namespace tavrin
