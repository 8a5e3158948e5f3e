#pragma once

#include "support/values/PropertyValue.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

namespace tavrin {

/// What came of asking for the metadata of a file.
struct FileMetadata {
    PropertyDictionary tags = {}; ///< texts by key; empty for a file that has none, too
    std::string failure = {};     ///< why they could not be read, as a part of a sentence; else empty
};

/// "The metadata of 2 files could not be read", for a reason to follow.
[[nodiscard]] std::string unreadMetadataOf(std::size_t files);

class ToolProcess;

/// The program that reads all metadata of a file: a child process that is kept alive, is given one path a
/// line and answers with keys and values. It is started at the first request, replaced after 100, and started
/// again when it has died. Any thread; requests take turns and block.
class MetadataTool {
  public:
    /// Which of the two users of the tool asks; each counts its requests by itself.
    enum class Client { allTags, mp3Tags };

    struct Limits {
        /// More than the tool gives itself for a file. A child that takes longer is killed.
        std::chrono::milliseconds time = std::chrono::seconds(60);
        std::size_t answer = std::size_t{16} * 1024 * 1024; ///< bytes
    };

    /// The path of the program to start.
    explicit MetadataTool(const std::string& path);
    MetadataTool(const std::string& path, Limits bounds);
    ~MetadataTool();
    MetadataTool(const MetadataTool&) = delete;
    MetadataTool& operator=(const MetadataTool&) = delete;

    /// What the tool tells of one file, path in bytes. It fails when the tool can't be started, dies, answers
    /// nothing sensible or gives a reason why it has no answer, which is logged once each time, and for a
    /// path with a line feed.
    [[nodiscard]] FileMetadata tagsFor(const std::string& path, Client client);

    /// What an answer of the tool holds.
    [[nodiscard]] static PropertyDictionary parseAnswer(const std::string& bytes);

  private:
    enum class Attempt { succeeded, refused, died, failed };

    void prepareChild(Client client);
    Attempt ask(const std::string& path, std::string& answer);

    const std::string script;
    const Limits limits;

    std::mutex mutex; ///< guards what follows
    std::unique_ptr<ToolProcess> child;
    std::array<int, 2> useCounts{}; ///< by client
    std::string problem;            ///< of the latest attempt
};

} // namespace tavrin
