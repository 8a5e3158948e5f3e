#include "presentation/WindowFixture.h"

#include "actions/ActionList.h"
#include "presentation/cards/Card.h"

namespace tavrin::test {

static constexpr int patience = 10000; // milliseconds

void WindowFixture::make(const std::string& dataFolder) {
    TavrinApplication::Options options;
    options.dataFolder = dataFolder.empty() ? data.path() : dataFolder;
    options.defaultsPath = options.dataFolder + "/defaults.plist";
    application.reset(); // two can't be there at once
    application = std::make_unique<TavrinApplication>(options);
}

void WindowFixture::start(const std::vector<std::string>& paths) {
    make();
    application->start(paths);
    waitForPreview();
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
    for (const Card* card : Card::in(*button->window()))
        waitUntil("the card listens", [card] { return !card->isDeaf(); });
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowFixture::type(const char* name, const QString& text) {
    auto* field = find(name);
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
    controller().actionListCommands().chooseAction(*index);
}

BaseRenameAction& WindowFixture::currentAction() { return controller().compositeAction().getCurrentAction(); }

PreviewTableModel& WindowFixture::model() {
    return dynamic_cast<PreviewTableModel&>(*find<QTableView>("previewTableView")->model());
}

WindowFixture::Names WindowFixture::listed(std::u16string PreviewList::Row::*name) {
    Names result;
    for (int row = 0; row < model().rowCount(); ++row)
        result.push_back(text::toUtf8(model().rowAt(row).*name));
    return result;
}

void WindowFixture::waitUntil(const std::string& what, const std::function<bool()>& condition) {
    if (!QTest::qWaitFor(condition, patience))
        throw std::runtime_error("waited in vain until " + what);
}

void WindowFixture::waitForText(const char* name, const QString& text) {
    (void)QTest::qWaitFor([&] { return find(name)->property("text") == text; }, patience);
    EXPECT_EQ(find(name)->property("text").toString().toStdString(), text.toStdString());
}

void WindowFixture::waitForBar(const std::string& words) {
    const auto told = [] {
        const auto* label = qobject_cast<QLabel*>(findWidget("messageText"));
        const bool isShown = label && label->isVisible();
        return isShown ? QTextDocumentFragment::fromHtml(label->text()).toPlainText().toStdString() : "";
    };
    (void)QTest::qWaitFor([&] { return told().starts_with(words); }, patience);
    EXPECT_THAT(told(), ::testing::StartsWith(words));
}

void WindowFixture::waitUntilGone(const char* name) {
    waitUntil(std::string("gone: ") + name, [name] {
        const QWidget* widget = findWidget(name);
        return !widget || !widget->isVisible();
    });
}

static std::string toldBy(const QMessageBox& box) {
    return (box.text() + '|' + box.informativeText()).toStdString();
}

std::string WindowFixture::close(const char* name) {
    auto* dialog = waitFor<QDialog>(name);
    const auto* box = dynamic_cast<QMessageBox*>(dialog);
    std::string told = box ? toldBy(*box) : "";
    dialog->accept();
    waitUntilGone(name);
    return told;
}

/// Reads the report of a run that the application ends with, if one is there, and lets it end.
std::string WindowFixture::readReport() {
    auto* card = dynamic_cast<Card*>(findWidget("runReport"));
    const bool isCard = card && card->isVisible();
    auto* button = dynamic_cast<QPushButton*>(findWidget(isCard ? "quit" : "readReport"));
    if (!button || !button->isVisible() || (isCard && card->isDeaf()))
        return {};
    const std::string told =
        isCard ? (card->accessibleName() + '|' + card->accessibleDescription()).toStdString()
               : find("runReport")->accessibleName().toStdString();
    QTest::mouseClick(button, Qt::LeftButton);
    return told;
}

WindowFixture::End WindowFixture::runToTheEnd(const std::function<void()>& user) {
    std::string told;
    QTimer often;
    QObject::connect(&often, &QTimer::timeout, [&] {
        user();
        if (const std::string end = readReport(); !end.empty())
            told = end;
        auto* alert = dynamic_cast<QMessageBox*>(findWidget("alert"));
        if (!alert || !alert->isVisible() || !alert->isEnabled())
            return;
        told = toldBy(*alert);
        alert->close();
    });
    often.start(1);
    QTimer watchdog;
    QObject::connect(&watchdog, &QTimer::timeout, [] {
        ADD_FAILURE() << "the event loop did not end";
        QCoreApplication::exit(-1);
    });
    watchdog.start(patience);
    return {QApplication::exec(), told};
}

void WindowFixture::waitForPreview() {
    controller().previewControl().firePendingPreview();
    waitUntil("the preview is done", [this] {
        return !controller().previewControl().isPreviewPending() && !controller().renameEngine().isBusy();
    });
}

void WindowFixture::waitForNames(const Names& names) {
    controller().previewControl().firePendingPreview();
    (void)QTest::qWaitFor([&] { return newNames() == names; }, patience);
    EXPECT_EQ(newNames(), names);
}

} // namespace tavrin::test
