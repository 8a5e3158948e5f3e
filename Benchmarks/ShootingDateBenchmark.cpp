#include "Photos.h"
#include "platform/metadata/FileManager.h"

#include <benchmark/benchmark.h>

// Shooting dates of many small JPEG files, read through the image library: files per second. The files were
// just written, so they come from memory.

namespace tavrin {

namespace {

constexpr std::size_t photoCount = 10000;

void shootingDates(benchmark::State& state) {
    const Photos photos(photoCount);
    const FileManager files;
    std::size_t found = 0;
    std::size_t asked = 0;
    for (auto _ : state) {
        for (const auto& path : photos.paths)
            found += files.fileEXIFDate(path) != FileManager::distantPast ? 1U : 0U;
        asked += photoCount;
    }
    if (found != asked)
        state.SkipWithError("a photograph has no shooting date");
    state.SetItemsProcessed(static_cast<std::int64_t>(asked));
}
BENCHMARK(shootingDates)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace tavrin
