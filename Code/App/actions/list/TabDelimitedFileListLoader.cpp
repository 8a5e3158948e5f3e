#include "actions/list/TabDelimitedFileListLoader.h"

#include "actions/list/ListFile.h"

namespace tavrin {

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

} // namespace tavrin
