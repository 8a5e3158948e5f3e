#pragma once

#include <QWidget>
#include <memory>
#include <string_view>

namespace tavrin {

/// The pages of the help, with contents and search. Object name "helpWindow".
class HelpWindow final : public QWidget {
  public:
    HelpWindow();
    ~HelpWindow() override;

    /// Opens the page of an anchor ("helpTopic61"); empty or unknown: the first page.
    void showAnchor(std::string_view anchor);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
