#pragma once

#include <QCoreApplication>
#include <QString>
#include <string>

namespace tavrin {

/// Names as they are shown: one line, and nothing in them that hides or moves other characters. Every code
/// unit stays one, so that positions hold.
struct ShownName {
    Q_DECLARE_TR_FUNCTIONS(tavrin::ShownName)

  public:
    /// With `invisibles` blanks and control characters show as marks.
    [[nodiscard]] static QString of(const std::u16string& name, bool invisibles);
    /// The bytes of a name that are not UTF-8, in words; empty where there are none.
    [[nodiscard]] static QString bytesNote(const std::u16string& name);
};

/// Why no file can have this name, as far as the name alone tells, in words that ShownName translates; null
/// where it can.
[[nodiscard]] const char* problemOfName(const std::u16string& name);

} // namespace tavrin
