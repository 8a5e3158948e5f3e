
#include "common/Testing.h"

namespace tavrin::test {

namespace fs = std::filesystem;

namespace {

/// Files are made through the standard library, so that a file system under test has no part in it.
std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Gives back the rights that a test has taken from folders.
void openUp(const fs::path& folder) {
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const auto& entry : fs::directory_iterator(folder, ignored))
        if (entry.symlink_status(ignored).type() == fs::file_type::directory)
            openUp(entry.path());
}

} // namespace

TemporaryFolder::TemporaryFolder(const std::string& place) {
    std::string pattern =
        fs::canonical(place.empty() ? fs::temp_directory_path() : fs::path(place)).string() +
        "/tavrin-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot make a temporary folder");
    folder = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    openUp(folder);
    fs::remove_all(folder, ignored);
}

std::string TemporaryFolder::path(std::string_view name) const { return folder + "/" + std::string(name); }

std::string TemporaryFolder::write(std::string_view name, std::string_view content) const {
    const std::string target = path(name);
    fs::create_directories(fs::path(target).parent_path());
    std::ofstream file(target, std::ios::binary);
    file << content;
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + target);
    return target;
}

std::string TemporaryFolder::makeFolder(std::string_view name) const {
    fs::create_directories(path(name));
    return path(name);
}

std::string TemporaryFolder::link(std::string_view name, const std::string& target) const {
    fs::create_directories(fs::path(path(name)).parent_path());
    fs::create_symlink(target, path(name));
    return path(name);
}

void TemporaryFolder::remove(std::string_view name) const {
    if (fs::remove_all(path(name)) == 0)
        throw std::runtime_error("nothing to remove at " + path(name));
}

std::string TemporaryFolder::read(std::string_view name) const { return contentOf(path(name)); }

std::optional<FileStatus::Kind> TemporaryFolder::kind(std::string_view name) const {
    using enum fs::file_type;
    const auto type = fs::symlink_status(path(name)).type();
    if (type == not_found)
        return std::nullopt;
    return type == regular     ? FileStatus::Kind::file
           : type == directory ? FileStatus::Kind::folder
           : type == symlink   ? FileStatus::Kind::link
                               : FileStatus::Kind::other;
}

std::vector<std::string> TemporaryFolder::names(std::string_view of) const {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(path(of)))
        result.push_back(entry.path().filename().string());
    std::ranges::sort(result);
    return result;
}

std::map<std::string, std::string> TemporaryFolder::tree() const {
    std::map<std::string, std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto name = entry.path().string().substr(folder.size() + 1);
        const auto is = kind(name);
        result[is == FileStatus::Kind::folder ? name + "/" : name] =
            is == FileStatus::Kind::file     ? contentOf(path(name))
            : is == FileStatus::Kind::link   ? "-> " + fs::read_symlink(entry.path()).string()
            : is == FileStatus::Kind::folder ? ""
                                             : "?";
    }
    return result;
}

} // namespace tavrin::test
