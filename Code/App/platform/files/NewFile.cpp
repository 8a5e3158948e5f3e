#include "platform/files/NewFile.h"

#include "platform/files/FileSystem.h"

#include <atomic>
#include <unistd.h>

namespace tavrin {

int writeNewFile(const std::string& path, std::string_view content) {
    static std::atomic<unsigned> counter = 0;
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string beside =
        folder + ".tavrin-new-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".tmp";
    FileSystem& files = FileSystem::sharedInstance();
    if (const int error = files.writeFileAtomically(beside, content))
        return error;
    const int error = files.renameNoReplace(beside, path);
    if (error != 0)
        static_cast<void>(files.removeFile(beside));
    return error;
}

} // namespace tavrin
