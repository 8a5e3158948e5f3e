#include "platform/FileManager.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <vector>

// Shooting dates of many small JPEG files, read through the image library: files per second. The files were
// just written, so they come from memory.

namespace tavrin {

namespace {

constexpr std::size_t photoCount = 10000;

/// A folder of copies of one photograph, which ends with this object.
class Photos {
  public:
    Photos() {
        std::string name = (std::filesystem::temp_directory_path() / "tavrin-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make " + name);
        folder = name;
        for (std::size_t i = 0; i < photoCount; ++i) {
            paths.push_back(name + "/" + std::to_string(i) + ".jpg");
            std::filesystem::copy_file(TAVRIN_SAMPLES "/photo.jpg", paths.back());
        }
    }
    ~Photos() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    Photos(const Photos&) = delete;
    Photos& operator=(const Photos&) = delete;

    std::vector<std::string> paths;

  private:
    std::filesystem::path folder;
};

void shootingDates(benchmark::State& state) {
    const Photos photos;
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
