#pragma once

#include "support/values/Crc32.h"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace tavrin::test {

/// The text of a record, to be changed line by line.
struct RecordText {
    explicit RecordText(const std::string& text = "") {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
    }

    /// The lines again, each "block" line with the count and checksum of those before it.
    [[nodiscard]] std::string withChecksums() const {
        std::string text;
        std::size_t start = 0;
        std::size_t count = 0;
        for (const std::string& line : lines) {
            if (line.starts_with("block")) {
                text += "block\t" + std::to_string(count) + "\t" +
                        std::to_string(crc32(std::string_view(text).substr(start))) + "\n";
                start = text.size();
                count = 0;
            } else {
                text += line + "\n";
                ++count;
            }
        }
        return text;
    }

    std::vector<std::string> lines;
};

} // namespace tavrin::test
