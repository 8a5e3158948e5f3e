#include "actions/list/RenameListLoader.h"

#include "actions/list/ListField.h"
#include "actions/list/ListFile.h"

namespace tavrin {

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
