#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <vector>

namespace tavrin {

/// A folder of copies of one photograph, which ends with this object.
class Photos {
  public:
    explicit Photos(std::size_t count) {
        std::string name = (std::filesystem::temp_directory_path() / "tavrin-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make " + name);
        folder = name;
        for (std::size_t i = 0; i < count; ++i) {
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

    std::filesystem::path folder;
    std::vector<std::string> paths;
};

} // namespace tavrin
