#include "presentation/preview/ShownName.h"

#include "support/text/Text.h"
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

QString ShownName::note(const ProblemNote& note) {
    if (note.form.empty())
        return {};
    QString text = tr(std::string(note.form).c_str());
    for (const std::string& value : note.values)
        text = text.arg(of(text::fromUtf8(value), true));
    return text;
}

} // namespace tavrin
