#include "presentation/preview/ShownName.h"

#include "tags/StringToInvisiblesValueTransformer.h"

#include <QStringList>

namespace tavrin {

namespace {

constexpr char16_t bullet = u'\u2023';

bool isByte(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

bool isPaired(const std::u16string& name, std::size_t place) {
    return place > 0 && name[place - 1] >= 0xD800 && name[place - 1] <= 0xDBFF;
}

/// Marks that reorder what stands beside them.
bool movesOthers(char16_t unit) {
    return unit == 0x061C || unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

bool isControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029 ||
           movesOthers(unit);
}

char16_t shownUnit(char16_t unit, bool invisibles) {
    if (invisibles)
        if (const char16_t sign = StringToInvisiblesValueTransformer::signFor(unit))
            return sign;
    return isControl(unit) ? bullet : unit;
}

} // namespace

QString ShownName::of(const std::u16string& name, bool invisibles) {
    QString shown(static_cast<qsizetype>(name.size()), Qt::Uninitialized);
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isLoneByte = isByte(name[i]) && !isPaired(name, i);
        shown[static_cast<qsizetype>(i)] = isLoneByte ? u'\uFFFD' : shownUnit(name[i], invisibles);
    }
    return shown;
}

QString ShownName::bytesNote(const std::u16string& name) {
    QStringList bytes;
    for (std::size_t i = 0; i < name.size(); ++i)
        if (isByte(name[i]) && !isPaired(name, i))
            bytes.append(QString("%1").arg(name[i] - 0xDC00, 2, 16, QChar('0')).toUpper());
    return bytes.isEmpty() ? QString() : tr("Bytes that are not UTF-8: %1").arg(bytes.join(' '));
}

QString ShownName::problemNote(NameProblem problem, std::uint16_t detail) {
    using enum NameProblem;
    switch (problem) {
    case none:
        return {};
    case empty:
        return tr("the name would be empty");
    case holdsNul:
        return tr("names cannot hold a NUL character");
    case standsForFolder:
        return tr("“.” and “..” cannot be names");
    case cutCharacter:
        return tr("cuts a character in two");
    case tooManyBytes:
        return tr("longer than %1 bytes").arg(detail);
    case tooManyUnits:
        return tr("longer than %1 characters").arg(detail);
    case foreignCharacter:
        return tr("holds a character that the file system forbids");
    case taken:
        return tr("taken by another item");
    case conflict:
        return tr("same as another item");
    case lockedFolder:
        return tr("the folder cannot be changed");
    case lockedItem:
        return tr("only its owner may rename it");
    case readOnlyVolume:
        return tr("read-only file system");
    case link:
        return tr("links are not renamed");
    case gone:
        return tr("no longer there");
    case replaced:
        return tr("replaced by an item of another kind");
    case folderReplaced:
        return tr("the folder has been replaced by another");
    case lostExchange:
        return tr("it cannot exchange names with an item that is gone");
    }
    return {};
}

} // namespace tavrin
