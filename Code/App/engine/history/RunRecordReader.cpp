#include "engine/history/RunRecordReader.h"

#include "support/text/PathParts.h"
#include "support/values/Crc32.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

namespace tavrin {

namespace {

/// Longer than any last line.
constexpr std::size_t tailLength = 1024;

std::string sentenceOf(int error) {
    if (error == EPERM)
        return "It belongs to another user.";
    if (error == ELOOP)
        return "It is a link.";
    if (error == EINVAL)
        return "It is no file.";
    return "It can't be read: " + std::generic_category().message(error) + ".";
}

} // namespace

RunRecordReader::RunRecordReader(const std::string& path) {
    if (const int error = file.open(path)) {
        failure = sentenceOf(error);
        return;
    }
    canBeRead = true;
    readHeading();
    std::string tail = file.tail(tailLength);
    if (tail.empty() || tail.back() != '\n')
        return;
    tail.pop_back();
    runEnd = runLine::read<RunEnd>(std::string_view(tail).substr(tail.rfind('\n') + 1));
}

void RunRecordReader::readHeading() {
    std::string_view line;
    const bool hasFirstLine = file.next(line);
    if (hasFirstLine && line != runLine::firstLine && line.starts_with(runLine::anyFirstLine)) {
        canBeRead = false;
        failure = "It was written by a newer version of Tavrin.";
        return;
    }
    const bool isRecord = hasFirstLine && line == runLine::firstLine && file.next(line);
    const std::optional<RunHeading> found = isRecord ? runLine::read<RunHeading>(line) : std::nullopt;
    if (!found) {
        failure = "It is no record of a run.";
        return;
    }
    runHeading = *found;
    if (file.next(line))
        if (const auto recipe = runLine::read<runLine::Recipe>(line))
            recipeText = recipe->text;
    bool hasMore = file.next(line);
    linksAreItems = hasMore && line == runLine::linksLine;
    if (linksAreItems)
        hasMore = file.next(line);
    if (hasMore) {
        if (const auto folder = runLine::read<RecordedFolder>(line))
            topFolder = folder->path;
    }
}

/// What has been read of a block that has not ended yet.
struct RunRecordReader::OpenBlock {
    std::size_t lines = 0;
    std::size_t items = 0;
    std::uint32_t checksum = 0;
    std::vector<RecordedFolder> folders;
    bool isSound = true;
};

void RunRecordReader::examine() {
    file.rewind();
    OpenBlock open;
    bool hasBrokenBlock = false;
    for (std::string_view line; file.next(line);) {
        if (const auto block = runLine::read<runLine::Block>(line)) {
            const bool counts =
                open.isSound && block->lines == open.lines && block->checksum == open.checksum;
            if (counts && !hasBrokenBlock)
                take(open);
            hasBrokenBlock |= !counts;
            open = {};
        } else if (const auto late = runLine::read<runLine::Late>(line)) {
            lateInodes[late->item] = late->inode;
            hasDamage |= open.lines > 0;
        } else if (const auto noFlag = runLine::read<runLine::NoFlag>(line)) {
            unflaggedDevices.insert(noFlag->device);
            hasDamage |= open.lines > 0;
        } else if (runLine::read<RunEnd>(line)) {
            hasDamage |= open.lines > 0;
        } else {
            add(line, open);
        }
    }
    // What a loss of power has cut off has no end, and no rename began before it was whole.
    hasDamage |= hasBrokenBlock || (runEnd && (open.lines > 0 || intactEnd == 0));
}

void RunRecordReader::add(std::string_view line, OpenBlock& block) const {
    const std::size_t known = recordedFolders.size() + block.folders.size();
    if (line.starts_with("item\t")) {
        const auto item = runLine::read<RecordedItem>(line);
        block.isSound = block.isSound && item && item->folder < known;
        ++block.items;
    } else if (line.starts_with("dir\t")) {
        auto folder = runLine::read<RecordedFolder>(line);
        block.isSound = block.isSound && folder && folder->number == known;
        if (block.isSound)
            block.folders.push_back(*std::move(folder));
    }
    block.checksum = crc32("\n", crc32(line, block.checksum));
    ++block.lines;
}

void RunRecordReader::take(OpenBlock& block) {
    intactEnd = file.position();
    items += block.items;
    std::ranges::move(block.folders, std::back_inserter(recordedFolders));
}

std::string RunRecordReader::commonFolder() const {
    if (recordedFolders.empty())
        return {};
    std::string common = recordedFolders.front().path;
    for (const RecordedFolder& folder : recordedFolders) {
        while (common.size() > 1 && folder.path != common && !folder.path.starts_with(common + "/"))
            common.resize(PathParts(common).folder.size());
    }
    return common;
}

void RunRecordReader::visitItems(const std::function<bool(const RecordedItem&, std::size_t)>& visitor) {
    file.rewind();
    std::size_t number = 0;
    for (std::string_view line; file.position() < intactEnd && file.next(line);) {
        std::optional<RecordedItem> item = runLine::read<RecordedItem>(line);
        if (!item)
            continue;
        if (const auto late = lateInodes.find(number); late != lateInodes.end())
            item->inode = late->second;
        if (!visitor(*item, number++))
            return;
    }
}

} // namespace tavrin
