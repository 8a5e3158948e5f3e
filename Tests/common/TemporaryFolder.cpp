#include "common/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

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
    switch (fs::symlink_status(path(name)).type()) {
    case fs::file_type::not_found:
        return std::nullopt;
    case fs::file_type::regular:
        return FileStatus::Kind::file;
    case fs::file_type::directory:
        return FileStatus::Kind::folder;
    case fs::file_type::symlink:
        return FileStatus::Kind::link;
    default:
        return FileStatus::Kind::other;
    }
}

std::map<std::string, std::string> TemporaryFolder::tree() const {
    std::map<std::string, std::string> result;
    addTree("", result);
    return result;
}

void TemporaryFolder::addTree(const std::string& prefix, std::map<std::string, std::string>& into) const {
    for (const auto& entry : fs::directory_iterator(path(prefix))) {
        const std::string name = prefix + entry.path().filename().string();
        const auto type = entry.symlink_status().type();
        if (type == fs::file_type::directory) {
            into[name + "/"];
            addTree(name + "/", into);
        } else if (type == fs::file_type::symlink) {
            into[name] = "-> " + fs::read_symlink(entry.path()).string();
        } else {
            into[name] = type == fs::file_type::regular ? contentOf(path(name)) : "?";
        }
    }
}

} // namespace tavrin::test
