#include "actions/list/RenameList.h"

#include <bit>
#include <functional>

namespace tavrin {

namespace {

std::uint32_t hashOf(std::u16string_view text) {
    return static_cast<std::uint32_t>(std::hash<std::u16string_view>{}(text));
}

} // namespace

RenameList::RenameList(TextColumn newNames) : names(std::move(newNames)) {}

RenameList::RenameList(TextColumn fileNames, TextColumn newNames, bool firstColumnHoldsPaths)
    : files(std::move(fileNames)), names(std::move(newNames)), holdsPaths(firstColumnHoldsPaths) {
    makeTable();
}

void RenameList::makeTable() {
    if (files.empty())
        return;
    table.resize(std::bit_ceil(files.size() * 2));
    for (std::size_t row = 0; row < files.size(); ++row) {
        const std::uint32_t hash = hashOf(files[row]);
        Slot& slot = table[slotOf(files[row], hash)];
        if (slot.row == 0)
            slot = {hash, static_cast<std::uint32_t>(row + 1)};
    }
}

std::size_t RenameList::slotOf(std::u16string_view key, std::uint32_t hash) const {
    const std::size_t mask = table.size() - 1;
    std::size_t place = hash & mask;
    while (table[place].row != 0 && !(table[place].hash == hash && files[table[place].row - 1] == key))
        place = (place + 1) & mask;
    return place;
}

std::optional<std::u16string_view> RenameList::newNameFor(std::u16string_view key) const {
    if (table.empty())
        return std::nullopt;
    const Slot& slot = table[slotOf(key, hashOf(key))];
    return slot.row == 0 ? std::nullopt : std::optional(names[slot.row - 1]);
}

// ---- loading

int TabDelimitedFileListLoader::load(std::string_view bytes) {
    ListScanner scanner(bytes);
    fileArray.reserve(bytes.size());
    for (int line = 1; !scanner.isAtEnd(); ++line)
        if (line > ListFile::maximumLines || !readLine(scanner, line == 1))
            return line;
    return 0;
}

bool TabDelimitedFileListLoader::readLine(ListScanner& scanner, bool isFirst) {
    const auto first = scanner.fieldBeforeTab();
    if (!first || field.isLonger(*first, ListField::longestFileName))
        return false;
    const std::string_view file = ListField::unquoted(*first);
    const bool isPath = file.starts_with('/');
    if (isFirst)
        holdsPaths = isPath;
    // An empty second column is no end of the line: the search for the field goes on in the next.
    if (isPath != holdsPaths || scanner.isAtEnd())
        return false;
    const std::string_view newName = ListField::unquoted(scanner.fieldBeforeLineEnd());
    if (field.isLonger(newName, ListField::longestNewName) || ListField::hasForbiddenCharacter(newName))
        return false;
    fileArray.append(field.normalized(file, ignoreCase));
    newNameArray.append(field.normalized(newName, false));
    return true;
}

int RenameListLoader::load(std::string_view bytes) {
    ListScanner scanner(bytes);
    fileArray.reserve(bytes.size());
    ListField field;
    for (int line = 1; !scanner.isAtEnd(); ++line) {
        const std::string_view name = scanner.fieldBeforeLineEnd();
        if (line > ListFile::maximumLines || field.isLonger(name, ListField::longestNewName) ||
            ListField::hasForbiddenCharacter(name))
            return line;
        fileArray.append(field.decoded(name));
    }
    return 0;
}

} // namespace tavrin
