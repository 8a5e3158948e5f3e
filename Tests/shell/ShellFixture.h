#pragma once

#include "actions/CatalogueFixture.h"
#include "common/ManualRunLoop.h"
#include "common/Recipes.h"
#include "common/ScriptedFrontEnd.h"
#include "shell/MainController.h"

namespace tavrin::test {

/// The whole application without a window: user defaults of its own, a data folder that goes with the test,
/// a run loop whose time the test moves, and a scripted user.
class ShellFixture : public CatalogueFixture {
  protected:
    ShellFixture() {
        options.store.dataFolder = data.path("Data");
        options.localPresetsFolder = data.path("Data/Presets");
        options.globalPresetsFolder = data.path("Global/Presets/");
        options.location = "/opt/tavrin";
        // Not what this is about, so no first launch, and a store without a file.
        defaults.setObject("firstLaunchVersion", 80001);
        defaults.setObject("store", 1);
        frontEnd.onProgress = [this] { loop.post([] {}); };
    }
    ~ShellFixture() override { endController(); }

    /// Makes the controller; it has not started yet.
    MainController& controller() {
        if (!made)
            made = std::make_unique<MainController>(
                MainController::Environment{frontEnd, loop, defaults, catalogue}, options);
        return *made;
    }
    void endController() {
        loop.close();
        made.reset();
    }
    /// The next start of the same user can begin.
    void restart() {
        endController();
        loop.reopen();
        frontEnd.isTerminated = false;
    }
    /// Starts and waits for the first preview; nothing of the start is left in the notes.
    void start() {
        controller().applicationDidFinishLaunching();
        waitForPreview();
        frontEnd.events.clear();
    }

    void setSteps(const std::vector<Step>& steps) {
        controller().compositeAction().setFlatParameterList(chain(steps));
    }
    std::vector<std::string> stepNames() {
        std::vector<std::string> names;
        for (const auto& step : controller().compositeAction().getActionDictionaryList())
            names.push_back(step->actionName());
        return names;
    }
    void set(const std::string& key, PropertyValue value) {
        controller().globalSettings().setValue(std::move(value), key);
    }
    Settings settings() { return controller().globalSettings().values(); }

    /// Makes files with their names in them, puts them on the list and waits for the preview; their paths.
    std::vector<std::string> add(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& name : names)
            paths.push_back(files.write(name, name));
        controller().addFilePaths(paths, true);
        waitForPreview();
        return paths;
    }
    /// Renames what is listed and asks nothing, up to its report.
    void rename() {
        set("interactiveMode", 0);
        frontEnd.expect("alert summary");
        controller().ok();
        waitUntilIdle();
    }

    /// Lets the preview delay pass and waits for what it sets off.
    void waitForPreview() {
        loop.advance(std::chrono::milliseconds(300));
        waitUntilIdle();
    }
    void waitUntilIdle() {
        ASSERT_TRUE(loop.runUntil([this] { return !controller().renameEngine().isBusy(); }));
        loop.runPosted();
    }
    /// The table: "name > finalName" of each row in order.
    std::vector<std::string> table() {
        std::vector<std::string> lines;
        PreviewList& list = controller().nodeController();
        for (std::size_t index = 0; index < list.count(); ++index) {
            const auto row = list.rowAt(index);
            lines.push_back(row ? text::toUtf8(row->name) + " > " + text::toUtf8(row->finalName) : "gone");
        }
        return lines;
    }
    std::string status() {
        controller().progressInfo().fireBindings();
        return controller().progressInfo().stageText();
    }

    TemporaryFolder data;
    TemporaryFolder files;
    ManualRunLoop loop;
    ScriptedFrontEnd frontEnd;
    MainController::Options options;

  private:
    std::unique_ptr<MainController> made;
};

} // namespace tavrin::test
