#pragma once

#include "presentation/help/HelpPages.h"

#include <QKeySequence>
#include <QWidget>
#include <optional>
#include <string_view>
#include <vector>

class QLineEdit;
class QListWidget;
class QTextBrowser;
class QToolButton;

namespace tavrin {

/// The pages of the help, with contents and search. Object name "helpWindow".
class HelpWindow final : public QWidget {
    Q_OBJECT

  public:
    HelpWindow();

    /// Opens the page of an anchor ("helpTopic61"); empty or unknown: the first page.
    void showAnchor(std::string_view anchor);

  private:
    struct Place {
        std::size_t page = 0;
        QString anchor = {};
        bool operator==(const Place&) const = default;
    };

    QWidget* buildBar();
    void addWay(QToolButton* button, const QString& text, QKeySequence::StandardKey keys, int steps);
    void loadPages();
    void applyFilter();
    void showPlace(const Place& place);
    /// Shows another place and keeps the way back.
    void goTo(Place place);
    void goBy(std::ptrdiff_t steps);

    HelpPages pages;
    std::vector<Place> history; ///< the present place is the one at `current`
    std::size_t current = 0;
    std::optional<std::size_t> pageShown;
    QToolButton* backButton;
    QToolButton* forwardButton;
    QLineEdit* filter;
    QListWidget* contents;
    QTextBrowser* browser;
};

} // namespace tavrin
