#pragma once

#include <QTranslator>

namespace tavrin {

/// The English forms of texts about a number of things, which stand side by side in the source, "1 item||%Ln
/// items", so that no file of translations is needed for them. Translators of other languages see both, and
/// give as many forms as their language has.
class EnglishPlurals final : public QTranslator {
  public:
    using QTranslator::QTranslator;

    [[nodiscard]] QString translate(const char* context, const char* source, const char* comment,
                                    int count) const override;
    [[nodiscard]] bool isEmpty() const override { return false; }
};

} // namespace tavrin
