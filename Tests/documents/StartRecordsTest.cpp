#include "actions/CatalogueFixture.h"
#include "common/FailingFileSystem.h"
#include "common/Recipes.h"
#include "documents/DropletHandOver.h"
#include "documents/FirstLaunchManager.h"

namespace tavrin::test {
namespace {

TEST(FirstLaunch, AFirstLaunchBeginsCleanAndIsRememberedOnDisk) {
    for (const int version : {80000, 80002, 0}) {
        SCOPED_TRACE(version);
        const TemporaryFolder folder;
        PropertyDictionary stored{{"actions", PropertyDictionary{{"Add to end", PropertyDictionary()}}}};
        if (version > 0)
            stored.emplace("firstLaunchVersion", version);
        const std::string bytes = PropertyList::toXml(stored);
        const std::string path = folder.write("defaults.plist", bytes);
        UserDefaults defaults(path);
        FirstLaunchManager manager(defaults, "/opt/tavrin");
        EXPECT_TRUE(manager.callOnlyOnceIsFirstLaunch());
        manager.doIt();
        EXPECT_TRUE(manager.isFirstLaunch() && !manager.callOnlyOnceIsFirstLaunch());
        EXPECT_FALSE(defaults.objectForKey("actions") || defaults.objectForKey("location"));
        const std::string copy = "defaults.plist.saved-" + std::to_string(version);
        EXPECT_EQ(folder.read(copy), bytes);
        ASSERT_TRUE(manager.otherSettings());
        EXPECT_EQ(manager.otherSettings()->copy, folder.path(copy));
        EXPECT_EQ(manager.otherSettings()->isNewer, version > 80001);

        UserDefaults next(path);
        EXPECT_EQ(next.objectForKey("actions"), std::nullopt);
        next.setObject("actions", u"kept");
        FirstLaunchManager second(next, "/opt/tavrin");
        second.doIt();
        EXPECT_FALSE(second.isFirstLaunch());
        EXPECT_FALSE(second.otherSettings());
        EXPECT_EQ(next.objectForKey("actions"), PropertyValue(u"kept"));
        EXPECT_EQ(UserDefaults(path).objectForKey("location"), PropertyValue(u"/opt/tavrin"));

        // The newer version comes back, and this one once more: no copy takes the place of another.
        folder.write("defaults.plist", bytes + "\n");
        UserDefaults third(path);
        FirstLaunchManager(third, "/opt/tavrin").doIt();
        EXPECT_EQ(folder.read(copy), bytes);
        EXPECT_EQ(folder.read(copy + "-2"), bytes + "\n");
    }
}

TEST(FirstLaunch, WhatCannotBeCopiedStaysAsItIs) {
    for (const FileCall call : {FileCall::read, FileCall::write, FileCall::rename}) {
        const TemporaryFolder folder;
        const PropertyDictionary stored{{"firstLaunchVersion", 90000}};
        UserDefaults defaults(folder.write("defaults.plist", PropertyList::toXml(stored)));
        const auto tree = folder.tree();
        FailingFileSystem failing;
        failing.failKind(call, ENOSPC);
        FirstLaunchManager manager(defaults, "/opt/tavrin");
        manager.doIt();
        failing.reset();
        EXPECT_EQ(manager.otherSettings()->error, "No space left on device");
        EXPECT_EQ(defaults.integerForKey("firstLaunchVersion"), 80001);
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_EQ(folder.tree(), tree);
    }
}

using DropletHandOverTest = CatalogueFixture;

TEST_F(DropletHandOverTest, IsReadOnceFromEitherLayer) {
    const PropertyDictionary record{{"file list", PropertyArray{u"/a", u"/b"}}};
    EXPECT_FALSE(DropletHandOver::isPresent(defaults));
    for (const bool isOfThisProcess : {false, true}) {
        if (isOfThisProcess)
            defaults.setProcessObject("droplet settings", record);
        else
            defaults.setObject("droplet settings", record);
        ASSERT_TRUE(DropletHandOver::isPresent(defaults));
        const auto handOver = std::get<DropletHandOver>(DropletHandOver::read(defaults));
        EXPECT_EQ(handOver.fileList, (std::vector<std::string>{"/a", "/b"}));
        EXPECT_FALSE(handOver.compositeAction || handOver.globalSettings || handOver.hasVersion);
        DropletHandOver::clear(defaults);
        EXPECT_FALSE(DropletHandOver::isPresent(defaults));
    }
}

TEST_F(DropletHandOverTest, WrongPartsAreErrors) {
    const std::pair<PropertyValue, std::string> cases[] = {
        {u"x", ": expected a dictionary"},
        {PropertyDictionary{{"composite action", chain({{"Fly", {}}})}},
         ".composite action.composite actions array[0].action name: there is no action \"Fly\""},
        {PropertyDictionary{{"file list", PropertyArray{u"/a", 2}}}, ".file list[1]: expected a path"}};
    for (const auto& [record, message] : cases) {
        defaults.setProcessObject("droplet settings", record);
        const auto error = std::get<RecipeError>(DropletHandOver::read(defaults));
        EXPECT_EQ(error.message, "droplet settings" + message);
    }
}

} // namespace
} // namespace tavrin::test
