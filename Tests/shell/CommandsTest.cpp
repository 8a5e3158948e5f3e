#include "documents/DropletBundle.h"
#include "engine/history/RunHistory.h"
#include "platform/metadata/FileManager.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class CommandsTest : public ShellFixture {
  protected:
    ActionListCommands& commands() { return controller().actionListCommands(); }
    CompositeRenameAction& steps() { return controller().compositeAction(); }
};

TEST_F(CommandsTest, StepsComeAndGoAndTheCurrentOneIsTheNearest) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Replace text", {}}, {"Remove text", {}}});
    const auto left = [this] {
        return fmt::format("{}, {}", steps().getCurrentActionIndexAsInt(), fmt::join(stepNames(), ", "));
    };
    commands().addAction();
    EXPECT_EQ(left(), "1, Add to end, Add to end, Replace text, Remove text");
    EXPECT_FALSE(commands().canCollapse());
    commands().moveAction(1, 3);
    EXPECT_EQ(left(), "3, Add to end, Replace text, Remove text, Add to end");
    EXPECT_EQ(steps().getCurrentAction().getParamString("string"), u"X");
    commands().resetToDefaults();
    EXPECT_EQ(steps().actionAtIndex(0).getParamString("string"), u"X");
    EXPECT_EQ(steps().actionAtIndex(3).getParamString("string"), u"");
    commands().removeAction();
    EXPECT_EQ(left(), "2, Add to end, Replace text, Remove text");
    steps().setCurrentActionIndex(0);
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text, Remove text");
    commands().clearActions();
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text");
    EXPECT_TRUE(commands().canCollapse());
}

TEST_F(CommandsTest, TheListOfStepsShowsHidesAndKeepsItsWidth) {
    start();
    const auto isShown = [this] { return settings().shouldShowMultistepDrawer == 1; };
    // A window reports the moves that are made for it as well.
    frontEnd.onDividerMoved = [this](double position) {
        commands().splitViewDidResizeSubviews(position == 0, position);
    };
    controller().showMultistepDrawer();
    EXPECT_EQ(frontEnd.events.back(), "divider 150");
    EXPECT_TRUE(isShown());
    commands().splitViewDidResizeSubviews(false, 90);
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 150);
    commands().splitViewDidResizeSubviews(false, 230);
    commands().splitViewDidResizeSubviews(true, 0);
    EXPECT_FALSE(isShown());
    for (const char* event : {"divider 230", "divider 0"}) {
        controller().showMultistepDrawer();
        EXPECT_EQ(frontEnd.events.back(), event);
    }
    EXPECT_FALSE(isShown());
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 230);
    // A preset of several steps brings it up; one that is no good is told and changes nothing.
    const auto save = [this](const char* path, const std::vector<Step>& list) {
        (void)data.write(path, PropertyList::toXml(PropertyDictionary{{"compositeAction", chain(list)}}));
    };
    save("Data/Presets/a.tvrn8preset.plist", {{"Replace text", {}}, {"Remove text", {}}});
    save("Data/Presets/b.tvrn8preset.plist", {{"Fly", {}}});
    controller().presetsManager().loadPresets();
    controller().applyPreset(1);
    EXPECT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_FALSE(isShown());
    controller().applyPreset(0);
    EXPECT_THAT(stepNames(), ElementsAre("Replace text", "Remove text"));
    EXPECT_TRUE(isShown());
}

TEST_F(CommandsTest, RefusalsSpeakOnceAndOnlyToTheUser) {
    start();
    const std::string d = files.write("sub/d");
    const std::vector<std::string> bad{files.write("folder/a"), files.path("folder2"), files.path("folder"),
                                       files.path("missing")};
    SourceCommands& sources = controller().sourceCommands();
    EXPECT_THAT(sources.addPaths({bad[2], files.write("folder2/b")}), IsEmpty());
    EXPECT_EQ(sources.addPaths({bad[0], bad[1], files.write("folder2/c"), bad[2], bad[3]}), bad);
    EXPECT_TRUE(controller().addFilePaths(bad, false));
    frontEnd.expect("alert filesNotAdded");
    EXPECT_TRUE(controller().applicationOpenFiles(bad));
    // The panel starts where it was last.
    controller().globalSettings().setLastAddDirectory("/somewhere");
    for (const auto& given : {std::optional(FilesToAdd{{d}, files.path("sub")}), {}}) {
        frontEnd.expect("files to add", given);
        controller().showFileDialog();
        EXPECT_EQ(controller().globalSettings().lastAddDirectory(), files.path("sub"));
    }
    EXPECT_THAT(frontEnd.events, Contains("panel starts at /somewhere"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("b > Image_01", "c > Image_02", "d > Image_03", "folder > Image_04"));
}

/// Undo and redo of whole runs, with two files renamed by one.
class UndoCommandsTest : public ShellFixture {
  protected:
    UndoCommandsTest() { options.history = {data.path("runs"), "window"}; }

    void renameTwo() {
        setSteps({{"Make uppercase", {{"fragmentSelection", 0}}}});
        add({"box/a", "box/b"});
        rename();
    }
    void perform(RunKind what, const std::string& run = {}) {
        for (int twice = 0; twice < 2; ++twice) // a question at a time
            what == RunKind::undo ? undos().undoRun(run) : undos().redoRun(run);
        waitUntilIdle();
        waitUntilIdle();
        waitForPreview();
    }
    UndoCommands& undos() { return controller().undoCommands(); }
    PastRun newest() { return RunHistory(options.history.folder).runs().front(); }
    std::vector<std::string> box() { return files.names("box"); }
};

TEST_F(UndoCommandsTest, WhatComesBackAsAWholeIsNotAskedAboutAndTheRestIsUpToTheUser) {
    start();
    renameTwo();
    const auto next = undos().next(RunKind::undo, [] {});
    EXPECT_EQ(next.value().count, 2);
    EXPECT_EQ(next->folder, files.path("box"));
    EXPECT_FALSE(undos().next(RunKind::redo, [] {}));
    frontEnd.expect("alert summary");
    perform(RunKind::undo);
    EXPECT_THAT(box(), ElementsAre("a", "b"));
    EXPECT_THAT(table(), ElementsAre("a > A", "b > B"));
    frontEnd.expect("alert nothingToTakeBack"); // said, not passed over
    perform(RunKind::undo);
    frontEnd.expect("alert summary");
    perform(RunKind::redo);
    EXPECT_THAT(box(), ElementsAre("A", "B"));

    std::filesystem::rename(files.path("box/A"), files.path("elsewhere"));
    const std::string run = newest().name;
    frontEnd.expect("undo 1 of 2", UndoAnswer::cancel);
    perform(RunKind::undo);
    EXPECT_THAT(box(), ElementsAre("B"));
    EXPECT_EQ(frontEnd.undoQuestion->reasons.size(), 1U);
    EXPECT_TRUE(frontEnd.undoQuestion->isOwn);
    frontEnd.expect("undo 1 of 2", UndoAnswer::showInHistory);
    perform(RunKind::undo);
    EXPECT_THAT(frontEnd.events, Contains("history " + run));
    frontEnd.expect("undo 1 of 2", UndoAnswer::go);
    frontEnd.expect("errors");
    perform(RunKind::undo);
    EXPECT_THAT(box(), ElementsAre("b"));
    EXPECT_EQ(frontEnd.failures.notRenamed, 1U);
}

TEST_F(UndoCommandsTest, ARunOfBeforeTheStartIsAskedAboutAndOneThatWasCutOffIsToldAndFinished) {
    start();
    renameTwo();
    restart();
    start();
    frontEnd.expect("undo 2 of 2", UndoAnswer::go);
    frontEnd.expect("alert summary");
    perform(RunKind::undo);
    EXPECT_FALSE(frontEnd.undoQuestion->isOwn);
    EXPECT_EQ(frontEnd.undoQuestion->who, "window");
    EXPECT_THAT(box(), ElementsAre("a", "b"));

    std::filesystem::remove_all(options.history.folder);
    renameTwo();
    const std::string record = newest().path.substr(data.path().size() + 1);
    const std::string text = data.read(record);
    data.write(record, text.substr(0, text.rfind("done\t")));
    std::filesystem::rename(files.path("box/B"), files.path("box/b"));
    frontEnd.expect("interrupted 1 of 2", InterruptedRunAnswer::finish);
    frontEnd.expect("alert summary");
    undos().tellInterruptedRun();
    waitUntilIdle();
    waitUntilIdle();
    EXPECT_THAT(box(), ElementsAre("A", "B"));
    undos().tellInterruptedRun(); // seen to: no word of it
    waitUntilIdle();
}

TEST_F(UndoCommandsTest, AnUndoThatWasCutOffIsFinishedAsAnUndoOrTakenBack) {
    using enum InterruptedRunAnswer;
    for (const auto& [answer, names] : {std::pair(finish, std::vector<std::string>{"a", "b"}),
                                        std::pair(takeBack, std::vector<std::string>{"A", "B"})}) {
        std::filesystem::remove_all(options.history.folder);
        start();
        renameTwo();
        frontEnd.expect("alert summary");
        perform(RunKind::undo);
        const std::string record = newest().path.substr(data.path().size() + 1);
        const std::string text = data.read(record);
        data.write(record, text.substr(0, text.rfind("done\t")));
        std::filesystem::rename(files.path("box/b"), files.path("box/B"));
        frontEnd.expect("interrupted 1 of 2", answer);
        frontEnd.expect("alert summary");
        undos().tellInterruptedRun();
        waitUntilIdle();
        waitUntilIdle();
        EXPECT_EQ(box(), names);
        std::filesystem::remove_all(files.path("box"));
        restart();
    }
}

TEST_F(UndoCommandsTest, ARecordThatWasDamagedInBetweenIsToldAndNothingIsTouched) {
    start();
    renameTwo();
    const std::string record = newest().path.substr(data.path().size() + 1);
    std::string text = data.read(record);
    text[text.find("item\t") + 6] ^= 1;
    data.write(record, text);
    frontEnd.expect("alert nothingToTakeBack");
    perform(RunKind::undo);
    EXPECT_THAT(frontEnd.alerts.back().text, HasSubstr("damaged"));
    EXPECT_THAT(box(), ElementsAre("A", "B"));
}

/// Making droplets, and bringing those and the presets of the version before to this one.
class DropletCommandsTest : public ShellFixture {
  protected:
    void create(const std::optional<std::string>& name, const char* told = nullptr) {
        frontEnd.expect("droplet path", name ? std::optional(files.path(*name)) : std::nullopt);
        if (told)
            frontEnd.expect(told);
        controller().createDroplet();
    }
    static std::string preset() {
        return PropertyList::toXml(PropertyDictionary{{"compositeAction", chain({{"Add to end", {}}})}});
    }
    std::string makeDroplet(const std::string& name, const char16_t* location) {
        const PropertyDictionary droplet{{"default location", location}};
        (void)files.write(name + "/Contents/Resources/Icon.icns");
        (void)files.write(name + "/Contents/Resources/Settings.plist",
                          PropertyList::toXml(PropertyDictionary{{"Droplet Settings", droplet}}));
        return files.path(name);
    }

    Variable home{"HOME", files.path().c_str()};
    Variable dataHome{"XDG_DATA_HOME", data.path().c_str()};
};

TEST_F(DropletCommandsTest, WritesTheChainAndTheSettingsAndExplainsDropletsUntilToldNotTo) {
    const char* const key = "don't show droplet information again";
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Remove text", {}}});
    set("lockedDroplet", true);
    for (const auto choice : {NoticeAnswer::cancel, NoticeAnswer::help}) {
        frontEnd.expect("notice dropletInformation", NoticeAnswer{choice, false});
        controller().createDroplet();
        EXPECT_EQ(defaults.objectForKey(key), std::nullopt);
    }
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic28");
    frontEnd.expect("notice dropletInformation", NoticeAnswer{NoticeAnswer::ok, true});
    create("first");
    create("x.y");
    EXPECT_THAT(frontEnd.events, Contains("panel titled Save Droplet starts at " + files.path()));
    PropertyDictionary expected = dropletList(controller().compositeAction().getFlatParameterList(),
                                              controller().globalSettings().parameterList());
    expected.insert_or_assign("Droplet Settings",
                              PropertyDictionary{{"default location", u"/Applications/Tavrin 9.app"},
                                                 {"location key", u"net.calderwick.tvrn9"},
                                                 {"temporary settings key", u"droplet settings"}});
    EXPECT_EQ(std::get<PropertyDictionary>(DropletBundle(files.path("x.app")).readSettings()), expected);
    EXPECT_TRUE(files.kind("x.desktop").has_value());
    EXPECT_TRUE(frontEnd.alerts.empty());
    (void)files.write("taken.app/photo.jpg");
    create("taken", "alert dropletNotCreated");
    EXPECT_TRUE(files.kind("taken.app/photo.jpg").has_value());
    set("silentDroplet", 1);
    create("silent", "alert dropletIsSilent");
    create(std::nullopt);
    setSteps({{"Add to end", {{"active", 0}}}});
    frontEnd.expect("alert noActiveActions");
    controller().createDroplet();
}

TEST_F(DropletCommandsTest, TellsOfEachFolderOfPresetsInTurn) {
    start();
    frontEnd.expect("alert presetMigration");
    controller().migratePresets();
    EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr("No presets"));
    for (const char* path : {"Morvane 8/Presets/a.mv8preset.plist", "Tavrin 8/Presets/a.mv8preset.plist"})
        (void)data.write(path, preset());
    frontEnd.expect("alert presetMigration", ScriptedFrontEnd::Held());
    controller().migratePresets();
    EXPECT_EQ(frontEnd.alerts.back().title,
              "Presets found at " + data.path("Morvane 8/") + " were successfully migrated.");
    EXPECT_THAT(frontEnd.events, Contains("fillPresetMenu 1"))
        << "a menu of old would apply other presets than those clicked";
    frontEnd.expect("alert presetMigration");
    frontEnd.answerHeld(AlertAnswer());
    EXPECT_EQ(frontEnd.alerts.back().title, "At least one of the preset files found at " +
                                                data.path("Tavrin 8/") + " could not be migrated.");

    (void)files.write("copied/Presets/b.tvrn8preset.plist", preset());
    (void)files.write("other/Presets/c.tvrn8preset.plist", preset());
    (void)files.makeFolder("without");
    for (const auto& [folder, told, count] : {std::tuple{"without", "There are no presets at", 1U},
                                              {"copied", "successfully migrated.", 2U},
                                              {"other/Presets/", "successfully migrated.", 3U},
                                              {"copied/Presets", "could not be migrated.", 3U}}) {
        frontEnd.expect("folder", std::optional(files.path(folder)));
        frontEnd.expect("alert presetMigration");
        controller().migratePresetsFromFolder();
        EXPECT_THAT(frontEnd.alerts.back().title, HasSubstr(told)) << folder;
        EXPECT_EQ(controller().presetsManager().count(), count) << folder;
    }
    frontEnd.expect("folder", std::optional<std::string>());
    controller().migratePresetsFromFolder();
}

TEST_F(DropletCommandsTest, MigratesAllDropletsThatItCanAndTellsOnce) {
    using Paths = std::optional<std::vector<std::string>>;
    start();
    const std::string good = makeDroplet("good.app", u"/Applications/Tavrin 8.app");
    const std::string bad = makeDroplet("bad.app", u"/Applications/Notes.app");
    const std::string late = makeDroplet("late.app", u"/Applications/Morvane 8.app");
    const std::vector<std::pair<Paths, std::string>> cases{
        {Paths(), ""},
        {Paths({}), ""},
        {Paths({bad, late + "/"}), "An error occurred"},
        {Paths({good, files.path("late.desktop")}), "Success"}};
    for (const auto& [chosen, told] : cases) {
        frontEnd.expect("droplets", chosen);
        if (!told.empty())
            frontEnd.expect("alert dropletMigration");
        controller().migrateDroplet();
        EXPECT_EQ(frontEnd.alerts.empty() ? "" : frontEnd.alerts.back().title, told);
    }
    EXPECT_THAT(files.read("late.app/Contents/Resources/Settings.plist"), HasSubstr("Tavrin 9.app"));
    EXPECT_THAT(files.read("late.desktop"), HasSubstr("\"/opt/tavrin\" --droplet"));
}

/// A chain that asks files for an artist whom none of them has.
class MissingTagNoticeTest : public ShellFixture {
  protected:
    MissingTagNoticeTest() {
        FileManager::setInstance(&fileManager);
        begin();
    }
    ~MissingTagNoticeTest() override {
        endController(); // ends the threads that may ask a file
    }
    void begin() {
        start();
        setSteps({{"Rename from tag", {{"pattern", u"<Artist>"}}}});
    }
    /// One that finds nothing in any file.
    std::string makeTool() {
        const std::string tool = data.write(
            "tool",
            "#!/bin/sh\nwhile read -r path; do printf '{extracted-key}:\\n---finished---\\n'; done\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        return tool;
    }

    FileManager fileManager{makeTool()};
};

TEST_F(MissingTagNoticeTest, TellsOnceInARunOfTheProgramUntilItsBoxIsTicked) {
    using Answer = std::optional<ScriptedFrontEnd::Answer>; // absent: it is not told
    const char* const key = "showTagNotPresentDialog";
    const std::tuple<std::optional<bool>, Answer, bool> cases[] = {
        {std::nullopt, AlertAnswer(), true},
        {true, ScriptedFrontEnd::Closed(), true},
        {true, AlertAnswer{.button = 0, .suppress = true}, false},
        {false, std::nullopt, true}};
    for (const auto& [isWanted, answer, isWantedAfter] : cases) {
        if (isWanted)
            defaults.setObject(key, *isWanted);
        if (answer)
            frontEnd.expect("alert tagNotPresent", *answer);
        add({"a.txt", "b.txt"});
        EXPECT_THAT(table(), ElementsAre("a.txt > a.txt", "b.txt > b.txt"));
        EXPECT_TRUE(frontEnd.isScriptOver());
        if (!answer) // counts as told all the same
            defaults.setObject(key, true);
        add({"c.txt"});
        EXPECT_EQ(defaults.boolForKey(key), isWantedAfter);
        restart();
        begin();
    }
}

TEST_F(MissingTagNoticeTest, TheEndFreesTheWorkerWhetherItIsShownOrNot) {
    for (const bool isShown : {true, false}) {
        controller().addFilePaths({files.write("a.txt")}, true);
        loop.advance(std::chrono::milliseconds(300));
        if (isShown) {
            frontEnd.expect("alert tagNotPresent", ScriptedFrontEnd::Held());
            ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
            EXPECT_TRUE(controller().renameEngine().isBusy());
        }
        restart(); // would hang
        begin();
    }
}

} // namespace
} // namespace tavrin::test
