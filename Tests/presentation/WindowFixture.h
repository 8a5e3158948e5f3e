#pragma once

#include "actions/CompositeRenameAction.h"
#include "common/Testing.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/TavrinApplication.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"

#include <QtTest>
#include <QtWidgets>

namespace tavrin::test {

/// The whole application with its window, offscreen, over a data folder and user defaults of its own. Files
/// are made in a folder of their own.
class WindowFixture : public ::testing::Test {
  protected:
    using Names = std::vector<std::string>;

    /// The application before its start, with its data in another folder where one is named.
    void make(const std::string& dataFolder = {});
    void start(const std::vector<std::string>& paths = {});
    [[nodiscard]] MainController& controller() { return application->controller(); }

    [[nodiscard]] std::string makeFile(const std::string& name) const { return folder.write(name, name); }
    [[nodiscard]] Names filesOnDisk() const { return folder.names(); }

    /// A widget of the window, or of any dialog, by its object name. Where there is none, the test fails and
    /// ends, as in what follows.
    template <typename Widget = QWidget> static Widget* find(const char* name) {
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
    void trigger(const char* name) { command(name).trigger(); }
    void set(const char* setting, int value) { controller().globalSettings().setValue(value, setting); }
    void chooseAction(const std::string& name);
    [[nodiscard]] BaseRenameAction& currentAction();
    [[nodiscard]] PreviewTableModel& model();
    /// The names of the list, top down, and what they become.
    [[nodiscard]] Names names() { return listed(&PreviewList::Row::name); }
    [[nodiscard]] Names newNames() { return listed(&PreviewList::Row::finalName); }

    /// Runs the event loop until the condition holds, for ten seconds at most.
    static void waitUntil(const std::string& what, const std::function<bool()>& condition);
    /// Until a dialog of this name is there to be used.
    template <typename Widget = QWidget> static Widget* waitFor(const char* name) {
        waitUntil(name, [name] {
            const QWidget* widget = findWidget(name);
            return widget && widget->isVisible();
        });
        return find<Widget>(name);
    }
    /// Until a label or button says this.
    void waitForText(const char* name, const QString& text);
    /// Until the bar below the list begins with this.
    static void waitForBar(const std::string& words);
    /// Until it is gone.
    static void waitUntilGone(const char* name);
    /// Closes a dialog as soon as it is there. Gives what an alert has told: its title, "|" and its text.
    std::string close(const char* name);
    static std::string readReport();
    /// How a run of the event loop ended, and what the last alert told on the way, as close() gives it.
    struct End {
        int status;
        std::string told;
    };
    /// Runs the event loop as the program does, until it ends by itself, with a user who does this again and
    /// again and closes alerts.
    End runToTheEnd(const std::function<void()>& user);
    /// Until no preview is due or under way any more; one that is due comes at once.
    void waitForPreview();
    /// Until the list shows these new names.
    void waitForNames(const Names& names);

    Names listed(std::u16string PreviewList::Row::*name);

    TemporaryFolder data;
    TemporaryFolder folder;
    std::unique_ptr<TavrinApplication> application;
};

} // namespace tavrin::test
