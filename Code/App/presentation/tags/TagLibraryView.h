#pragma once

#include "presentation/WindowServices.h"
#include "tags/TagArrayController.h"

#include <QObject>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>
#include <string>

class QLineEdit;
class QTabBar;

namespace tavrin {

/// Reads all tags of one file on another thread. Main thread.
class TagValues final : public QObject {
  public:
    /// The texts of the tags that the file has, by tag.
    using Texts = std::map<std::u16string, std::u16string>;

    ~TagValues() override;

    /// Calls `then` with the texts, unless another file is asked for first. A path that is empty has none.
    void read(const std::string& path, std::function<void(const Texts&)> then);

  private:
    std::uint64_t asked = 0;
};

class PreviewPane;
class TagList;

/// The list of tags beside a pattern editor: tabs by category, a filter, and each tag's value for the item
/// that is selected in the list. Object name "tagLibraryView".
class TagLibraryView final : public QWidget {
    Q_OBJECT

  public:
    TagLibraryView(const WindowServices& services, const PreviewPane& shownList);

  signals:
    /// A tag is to go into the pattern, by double click or Return.
    void tagTaken(const QString& tag);

  private:
    void buildTabs();
    void fill();
    void applyFilter();
    void showValuesOf(const std::string& path);
    void followSelection();

    const WindowServices services;
    const PreviewPane& shownList;
    TagArrayController controller;
    QTabBar* tabs;
    QLineEdit* filter;
    TagList* list;
    TagValues values;
    QTimer selectionWatch;
    std::string shownPath;
};

} // namespace tavrin
