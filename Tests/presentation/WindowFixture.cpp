#include "presentation/WindowFixture.h"

#include "actions/ActionList.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/MainWindow.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <algorithm>
#include <filesystem>

namespace tavrin::test {

namespace {

constexpr int patience = 10000; // milliseconds

} // namespace

WindowFixture::WindowFixture() = default;

WindowFixture::~WindowFixture() = default;

void WindowFixture::start(const std::vector<std::string>& paths) {
    TavrinApplication::Options options;
    options.defaultsPath = data.path() + "/defaults.plist";
    options.dataFolder = data.path();
    application = std::make_unique<TavrinApplication>(options);
    application->start(paths);
    waitForPreview();
}

void WindowFixture::restart() {
    application->controller().saveUserDefaults();
    application.reset();
    start();
}

std::string WindowFixture::makeFile(const std::string& name, const std::string& content) {
    return folder.write(name, content);
}

std::vector<std::string> WindowFixture::filesOnDisk() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

QWidget* WindowFixture::findWidget(const char* name) {
    // What is visible comes first: panels that are being put away may bear the same names.
    QWidget* found = nullptr;
    for (QWidget* widget : QApplication::allWidgets())
        if (widget->objectName() == name && (!found || widget->isVisible()))
            found = widget;
    return found;
}

void WindowFixture::click(const char* name) {
    auto* button = find<QAbstractButton>(name);
    ASSERT_TRUE(button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowFixture::type(const char* name, const QString& text) {
    QWidget* field = find(name);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

QAction& WindowFixture::command(const char* name) {
    auto* action = application->window().findChild<QAction*>(name);
    if (!action)
        throw std::runtime_error(std::string("no command ") + name);
    return *action;
}

void WindowFixture::chooseAction(const std::string& name) {
    const auto index = ActionList::sharedActionList().popUpMenuIndexForName(name);
    ASSERT_TRUE(index) << name;
    application->controller().actionListCommands().chooseAction(*index);
}

BaseRenameAction& WindowFixture::currentAction() {
    return application->controller().compositeAction().getCurrentAction();
}

PreviewTableModel& WindowFixture::model() {
    return dynamic_cast<PreviewTableModel&>(*find<QTableView>("previewTableView")->model());
}

std::vector<std::string> WindowFixture::newNames() {
    std::vector<std::string> names;
    for (int row = 0; row < model().rowCount(); ++row)
        names.push_back(text::toUtf8(model().rowAt(row).finalName));
    return names;
}

void WindowFixture::waitUntil(const std::string& what, const std::function<bool()>& condition) {
    if (!QTest::qWaitFor(condition, patience))
        throw std::runtime_error("waited in vain until " + what);
}

void WindowFixture::waitUntilGone(const char* name) {
    waitUntil(std::string("gone: ") + name, [name] {
        const QWidget* widget = findWidget(name);
        return !widget || !widget->isVisible();
    });
}

void WindowFixture::waitForPreview() {
    application->controller().previewControl().firePendingPreview();
    waitUntil("the preview is done", [this] {
        return !application->controller().previewControl().isPreviewPending() &&
               !application->controller().renameEngine().isBusy();
    });
}

void WindowFixture::waitForNames(const std::vector<std::string>& names) {
    application->controller().previewControl().firePendingPreview();
    (void)QTest::qWaitFor([&] { return newNames() == names; }, patience);
    EXPECT_EQ(newNames(), names);
}

} // namespace tavrin::test
