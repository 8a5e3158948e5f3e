#pragma once

#include "platform/files/Descriptor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// A text in a private file that another program edits. The file lies in a folder of its own, which only the
/// user may enter; both go with the object, and with them what the editor has left there. Any thread, but one
/// at a time.
class EditorFile {
  public:
    enum class Fault { unwritable, gone, isLink, noFile, unreadable, tooLong };
    struct Failure {
        Fault fault;
        int error = 0;             ///< errno value; 0 where the system has given none
        std::size_t mostBytes = 0; ///< that are read
    };

    /// Makes the folder, in that for the files of a session or that for temporary files. Throws
    /// std::system_error where none can be made.
    EditorFile(std::string_view folderPrefix, std::string fileName);
    ~EditorFile();
    EditorFile(const EditorFile&) = delete;
    EditorFile& operator=(const EditorFile&) = delete;

    /// Takes the place of whatever is there.
    [[nodiscard]] std::optional<Failure> write(std::string_view text);
    /// What the editor has left: 100 MB, or four times what was written.
    [[nodiscard]] std::variant<std::string, Failure> read() const;
    [[nodiscard]] std::string path() const { return folderPath + "/" + name; }
    [[nodiscard]] const std::string& folder() const { return folderPath; }

  private:
    [[nodiscard]] int writeAs(const char* temporaryName, std::string_view text) const;

    std::string name;
    std::string folderPath;
    Descriptor directory;
    std::size_t mostBytes;
};

} // namespace tavrin
