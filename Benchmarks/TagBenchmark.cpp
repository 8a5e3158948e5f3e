#include "Photos.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/ChildProcess.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

// All tags of a thousand photographs through the metadata tool, its starts and its replacements included, in
// turn with the library's own command line, which reads the same files in one process. "ofCommandLine" is the
// median of what part of the latter's time the former takes.

namespace tavrin {

namespace {

constexpr std::size_t photoCount = 1000;

double secondsOf(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void tags(benchmark::State& state) {
    const Photos photos(photoCount);
    const ChildProcess::Request commandLine{
        {"exiftool", "-a", "-G0", "-json", "-q", photos.folder.string()}, {}, 0, std::chrono::minutes(5)};
    std::vector<double> ratios;
    std::size_t found = 0;
    for (auto _ : state) {
        const FileManager files;
        const double ours = secondsOf([&] {
            for (const auto& path : photos.paths)
                found += files.allTagsFor(path).tags.contains("GPSPosition") ? 1U : 0U;
        });
        bool isSound = false;
        const double theirs = secondsOf([&] { isSound = ChildProcess::run(commandLine).succeeded(); });
        if (!isSound)
            state.SkipWithError("exiftool does not run");
        state.SetIterationTime(ours);
        ratios.push_back(ours / theirs);
    }
    if (found != ratios.size() * photoCount)
        state.SkipWithError("a photograph has no tags");
    std::nth_element(ratios.begin(), ratios.begin() + std::ssize(ratios) / 2, ratios.end());
    state.counters["ofCommandLine"] = ratios[ratios.size() / 2];
    state.SetItemsProcessed(static_cast<std::int64_t>(found));
}
BENCHMARK(tags)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

} // namespace

} // namespace tavrin
