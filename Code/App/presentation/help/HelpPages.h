#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <vector>

namespace tavrin {

/// The pages of the help, read from the resources: one HTML file each, in the order of their names; then a
/// reference of all actions and one of the words of recipes, made from the catalogue.
class HelpPages {
  public:
    void load();

    [[nodiscard]] std::size_t count() const { return pages.size(); }
    [[nodiscard]] const QString& title(std::size_t page) const { return pages.at(page).title; }
    [[nodiscard]] const QString& html(std::size_t page) const { return pages.at(page).html; }
    /// Whether title or text of a page hold the words.
    [[nodiscard]] bool contains(std::size_t page, const QString& words) const;
    [[nodiscard]] std::optional<std::size_t> pageOfAnchor(const QString& anchor) const;

  private:
    struct Page {
        QString title;
        QString html;
        QString text;
    };

    void addPage(const QString& html);
    void addActionReference();

    std::vector<Page> pages;
};

} // namespace tavrin
