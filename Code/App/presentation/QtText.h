#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tavrin {

/// Between the texts of the rooms below and those of Qt: both are UTF-16, lone surrogates pass unharmed.
[[nodiscard]] inline QString toQString(std::u16string_view text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}
[[nodiscard]] inline std::u16string fromQString(const QString& text) { return text.toStdU16String(); }
/// From the UTF-8 of messages and constants.
[[nodiscard]] inline QString toQString(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace tavrin
