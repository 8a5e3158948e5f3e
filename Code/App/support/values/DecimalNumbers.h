#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// Numbers as text in the decimal style of a locale, its grouping and its decimal sign, with at most three
/// decimals. Any thread.
class DecimalNumbers {
  public:
    /// A locale by its POSIX name, such as "de_DE.UTF-8" or "C"; one that is unknown counts as the root.
    explicit DecimalNumbers(const std::string& locale);
    ~DecimalNumbers();
    DecimalNumbers(const DecimalNumbers&) = delete;
    DecimalNumbers& operator=(const DecimalNumbers&) = delete;

    /// The name of the locale that the user has chosen for numbers.
    static std::string userLocale();

    /// Absent when the text as a whole is no number.
    [[nodiscard]] std::optional<double> numberFrom(std::u16string_view text) const;
    [[nodiscard]] std::u16string textOf(double number) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace tavrin
