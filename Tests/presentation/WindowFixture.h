#pragma once

#include "common/TemporaryFolder.h"
#include "presentation/TavrinApplication.h"

#include <gtest/gtest.h>

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

class QAction;

namespace tavrin {
class BaseRenameAction;
class PreviewTableModel;
} // namespace tavrin

namespace tavrin::test {

/// The whole application with its window, offscreen, over a data folder and user defaults of its own. Files
/// are made in a folder of their own.
class WindowFixture : public ::testing::Test {
  protected:
    WindowFixture();
    ~WindowFixture() override;

    void start(const std::vector<std::string>& paths = {});
    /// Ends the application and starts it anew over the same folders.
    void restart();

    std::string makeFile(const std::string& name, const std::string& content = "x");
    [[nodiscard]] std::vector<std::string> filesOnDisk() const;

    /// A widget of the window, or of any dialog, by its object name. Where there is none, the test fails and
    /// ends, as in what follows.
    template <typename Widget = QWidget> Widget* find(const char* name) {
        auto* widget = dynamic_cast<Widget*>(findWidget(name));
        if (!widget)
            throw std::runtime_error(std::string("no widget ") + name);
        return widget;
    }
    [[nodiscard]] static QWidget* findWidget(const char* name);
    void click(const char* name);
    /// Replaces the text of a line by real key strokes.
    void type(const char* name, const QString& text);

    /// A command of the window by the operation that it stands for.
    [[nodiscard]] QAction& command(const char* name);
    void chooseAction(const std::string& name);
    [[nodiscard]] BaseRenameAction& currentAction();
    [[nodiscard]] PreviewTableModel& model();
    /// The new names of the list, top down.
    [[nodiscard]] std::vector<std::string> newNames();

    /// Runs the event loop until the condition holds, for ten seconds at most.
    static void waitUntil(const std::string& what, const std::function<bool()>& condition);
    /// Until a dialog of this name is there to be used.
    template <typename Widget = QWidget> Widget* waitFor(const char* name) {
        waitUntil(name, [name] {
            const QWidget* widget = findWidget(name);
            return widget && widget->isVisible();
        });
        return find<Widget>(name);
    }
    /// Until it is gone.
    static void waitUntilGone(const char* name);
    /// Until no preview is due or under way any more; one that is due comes at once.
    void waitForPreview();
    /// Until the list shows these new names.
    void waitForNames(const std::vector<std::string>& names);

    TemporaryFolder data;
    TemporaryFolder folder;
    std::unique_ptr<TavrinApplication> application;
};

} // namespace tavrin::test
