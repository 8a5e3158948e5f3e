#pragma once

#include "engine/naming/NameProblems.h"

#include <QCoreApplication>
#include <QString>
#include <cstdint>
#include <string>

namespace tavrin {

/// Names as they are shown: one line, and nothing in them that hides or moves other characters. Every code
/// unit stays one, so that positions hold.
struct ShownName {
    Q_DECLARE_TR_FUNCTIONS(tavrin::ShownName)

  public:
    /// With `invisibles` blanks and control characters show as marks.
    [[nodiscard]] static QString of(const std::u16string& name, bool invisibles);
    /// What stands behind a new name, in as few words as do; empty where there is nothing to be told.
    [[nodiscard]] static QString note(const ProblemNote& note);
    /// The bytes of a name that are not UTF-8, in words; empty where there are none.
    [[nodiscard]] static QString bytesNote(const std::u16string& name);
};

} // namespace tavrin
