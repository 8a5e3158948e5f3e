// Makes pictures of the window's main states, light and dark: make_pictures FOLDER

#include "actions/ActionList.h"
#include "actions/CompositeRenameAction.h"
#include "common/TemporaryFolder.h"
#include "documents/PresetsManager.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/Appearance.h"
#include "presentation/MainWindow.h"
#include "presentation/TavrinApplication.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QIcon>
#include <QImage>
#include <QLineEdit>
#include <QLinearGradient>
#include <QListWidget>
#include <QPainter>
#include <QTableView>
#include <QTemporaryFile>
#include <QTest>
#include <clocale>
#include <cstdio>
#include <filesystem>

namespace tavrin {

namespace {

using test::TemporaryFolder;

/// Photographs with pictures in them, and a few papers.
std::vector<std::string> makeFiles(const TemporaryFolder& folder, int photos) {
    std::vector<std::string> paths;
    for (int i = 0; i < photos; ++i) {
        QImage image(320, 240, QImage::Format_RGB32);
        QPainter painter(&image);
        QLinearGradient sky(0, 0, 0, 240);
        sky.setColorAt(0, QColor::fromHsv((i * 37) % 360, 90, 230));
        sky.setColorAt(1, QColor::fromHsv((i * 37 + 60) % 360, 140, 150));
        painter.fillRect(image.rect(), sky);
        painter.end();
        const std::string path = folder.path("IMG_" + std::to_string(4020 + i) + ".JPG");
        image.save(QString::fromStdString(path), "JPG", 70);
        paths.push_back(path);
    }
    for (const char* name : {"notes from the trip (2).txt", "Lofoten 4030.jpg", "tickets.pdf"})
        paths.push_back(folder.write(name, "x"));
    return paths;
}

class Pictures {
  public:
    Pictures(const std::string& target, bool isDark) : prefix(target + (isDark ? "/dark-" : "/light-")) {}

    void take() {
        empty();
        numbers();
        replaceInSteps();
        regularExpression();
        tags();
        conflicts();
        hands();
        runs();
        preferences();
        help();
    }

  private:
    void open(int photos) {
        application.reset();
        data = std::make_unique<TemporaryFolder>();
        files = std::make_unique<TemporaryFolder>();
        TavrinApplication::Options options;
        options.defaultsPath = data->path() + "/defaults.plist";
        options.dataFolder = data->path();
        application = std::make_unique<TavrinApplication>(options);
        // The notice of a missing tag would wait for somebody to close it.
        UserDefaults::sharedInstance().setObject("showTagNotPresentDialog", false);
        application->start(photos > 0 ? makeFiles(*files, photos) : std::vector<std::string>());
        settle();
    }

    void settle() {
        QTest::qWait(200);
        (void)QTest::qWaitFor([this] {
            return !application->controller().previewControl().isPreviewPending() &&
                   !application->controller().renameEngine().isBusy();
        });
        QTest::qWait(300);
    }

    void choose(const char* action, const PropertyDictionary& parameters = {}) {
        const auto index = ActionList::sharedActionList().popUpMenuIndexForName(action);
        if (index)
            application->controller().actionListCommands().chooseAction(*index);
        for (const auto& [key, value] : parameters)
            application->controller().compositeAction().getCurrentAction().setValue(value, key);
        settle();
    }

    void trigger(const char* command) { application->window().findChild<QAction*>(command)->trigger(); }

    void save(const char* name, QWidget* widget = nullptr) {
        (widget ? widget : &application->window())
            ->grab()
            .save(QString::fromStdString(prefix + name + ".png"));
    }

    /// Saves the picture of the dialog that is open, and closes all.
    void saveDialog(const char* name) {
        QTest::qWait(400);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (qobject_cast<QDialog*>(widget) && widget->isVisible()) {
                save(name, widget);
                widget->close();
            }
        QTest::qWait(50);
    }

    void empty() {
        open(0);
        save("empty");
    }

    void numbers() {
        open(300);
        save("numbers");
        application->window().resize(760, 640);
        settle();
        save("narrow");
    }

    void replaceInSteps() {
        open(12);
        choose("Replace text", {{"searchTerm", u"IMG_"}, {"replacementTerm", u"Lofoten "}});
        trigger("addAction");
        choose("Make lowercase", {{"fragmentSelection", 2}});
        trigger("addAction");
        choose("Add date to end", {{"mode", 1}});
        application->controller().compositeAction().getCurrentAction().setValue(0, "active");
        application->controller().compositeAction().setCurrentActionIndex(0);
        settle();
        save("steps");
        QTest::keyClicks(application->window().findChild<QWidget*>("findAction"), "date");
        QTest::qWait(100);
        if (auto* hits = application->window().findChild<QWidget*>("actionHits"))
            save("search", hits);
    }

    void regularExpression() {
        open(8);
        choose("Reg Ex Substitution",
               {{"searchPattern", u"([A-Z]+)_(\\d\\d)(\\d\\d)"}, {"replacementTerm", u"$2-$3 $1"}});
        save("regex");
        choose("Remove anywhere", {{"fromMode", 1}, {"toMode", 2}});
        save("remove-anywhere");
    }

    void tags() {
        open(6);
        choose("Rename from tag",
               {{"pattern", u"<ModDate4DigitYear>-<ModDate0Month> <ImageWidth>x<ImageHeight> "}});
        application->window().previewPane().findChild<QWidget*>("previewTableView")->setFocus();
        QTest::qWait(1500);
        save("tags");
        choose("MP3 rename");
        save("music");
        choose("Rename from list");
        save("list");
    }

    void conflicts() {
        open(5);
        files->write("taken.JPG", "x");
        choose("Completely rename", {{"newName", u"taken"}});
        QTest::qWait(500);
        save("conflict");
    }

    void hands() {
        open(30);
        choose("Replace text", {{"searchTerm", u"IMG_"}, {"replacementTerm", u"Lofoten "}});
        auto* view = application->window().findChild<QTableView*>("previewTableView");
        view->setFocus();
        view->setCurrentIndex(view->model()->index(4, PreviewTableModel::currentName));
        trigger("editNewName");
        auto* editor = application->window().findChild<QWidget*>("newNameEditor");
        QTest::keyClicks(editor, "Reine at dawn");
        save("editor");
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Space);
        settle();
        save("by-hand");
        trigger("namesAsText");
        QTest::keyClick(application->window().findChild<QWidget*>("namesAsText"), Qt::Key_H,
                        Qt::ControlModifier);
        settle();
        save("names-as-text");
        trigger("namesAsText");
    }

    void runs() {
        const auto setting = [this](const char* key, int value) {
            application->controller().globalSettings().setValue(value, key);
        };
        const auto& window = application->window();
        trigger("ok");
        QTest::qWait(900);
        save("question");
        if (auto* stop = window.findChild<QAbstractButton*>("confirmStop"))
            stop->click();
        settle();
        save("stopped");
        setting("interactiveMode", 0);
        trigger("ok");
        settle();
        save("renamed");
        trigger("showHistory");
        QTest::qWait(800);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "historyWindow") {
                save("history", widget);
                widget->close();
            }
        application->controller().createFileList();
        saveDialog("save-list");
    }

    void preferences() {
        trigger("showPreferencesDialog");
        auto* window = application->window().findChild<QDialog*>("preferencesWindow");
        auto* contents = window->findChild<QListWidget*>("preferencesContents");
        for (int page = 0; page < contents->count(); ++page) {
            contents->setCurrentRow(page);
            QTest::qWait(50);
            save(("preferences-" + std::to_string(page)).c_str(), window);
        }
        window->close();
        QTest::qWait(50);
        auto& presets = application->controller().presetsManager();
        for (const char16_t* name : {u"Holiday photos", u"Make web safe", u"Music: artist first"})
            (void)presets.createPresetFromCurrentActionsWithName(name, u"What it is good for");
        trigger("createNewPresetWithCurrentSettings");
        application->window().findChild<QLineEdit*>("presetName")->setText("Holiday photos");
        saveDialog("preset");
        trigger("organizePresets");
        saveDialog("organize-presets");
        trigger("migrateDroplets");
        saveDialog("locate-droplets");
        trigger("migratePresetsFromFolder");
        saveDialog("locate-presets");
        const std::string feed =
            files->write("feed.xml", "<rss xmlns:s='urn:feed'><channel><item><link>https://example.org</link>"
                                     "<enclosure s:version='9.1'/></item></channel></rss>");
        UserDefaults::sharedInstance().setObject("SUFeedURL", text::fromUtf8(feed));
        trigger("checkForUpdates");
        saveDialog("update");
        trigger("showShortcuts");
        saveDialog("shortcuts");
        trigger("about");
        saveDialog("about");
    }

    void help() {
        application->window().showHelp("helpTopic61");
        QTest::qWait(200);
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "helpWindow")
                save("help", widget);
        application.reset();
    }

    std::string prefix;
    std::unique_ptr<TemporaryFolder> data;
    std::unique_ptr<TemporaryFolder> files;
    std::unique_ptr<TavrinApplication> application;
};

} // namespace

} // namespace tavrin

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_pictures FOLDER\n", stderr);
        return 2;
    }
    // A screen large enough for the whole window.
    QTemporaryFile screens;
    if (!screens.open())
        return 1;
    screens.write(R"({"screens": [{"name": "pictures", "x": 0, "y": 0, "width": 1920, "height": 1080}]})");
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    const QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(":/icons/net.calderwick.tavrin.svg"));
    std::filesystem::create_directories(argv[1]);
    for (const bool isDark : {false, true}) {
        tavrin::appearance::applyOwnPalette(isDark);
        tavrin::Pictures(argv[1], isDark).take();
    }
    return 0;
}
