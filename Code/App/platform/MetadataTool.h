#pragma once

#include "support/PropertyValue.h"

#include <memory>
#include <string>

namespace tavrin {

/// The program that reads all metadata of a file: a child process that is kept alive, is given one path a
/// line and answers with keys and values. It is started at the first request, replaced after 100, and started
/// again when it has died. Any thread; requests take turns and block.
class MetadataTool {
  public:
    /// Which of the two users of the tool asks; each counts its requests by itself.
    enum class Client { allTags, mp3Tags };

    /// The path of the program to start.
    explicit MetadataTool(std::string path);
    ~MetadataTool();
    MetadataTool(const MetadataTool&) = delete;
    MetadataTool& operator=(const MetadataTool&) = delete;

    /// Keys and values (texts) of one file, path in bytes. Empty when the tool can't be started, dies or
    /// answers nothing sensible, which is logged once each time, and for a path with a line feed.
    [[nodiscard]] PropertyDictionary tagsFor(const std::string& path, Client client);

    /// What an answer of the tool holds.
    [[nodiscard]] static PropertyDictionary parseAnswer(const std::string& bytes);

  private:
    struct Child;

    std::string script;
    std::unique_ptr<Child> child;
};

} // namespace tavrin
