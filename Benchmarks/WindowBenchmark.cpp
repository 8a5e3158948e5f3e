// What the window's main thread does with a long list, and how long it is held up by it:
//     window_benchmark [ROWS [FOLDERS]]
// First it tells of files that are dropped when their first rows stand on the screen with new names, and when
// all do; with "arrivals" as a third argument nothing else. Of each operation it prints its time until all is
// at rest, the longest single event, and the processor time of that one event, which other programs can't
// lengthen. Ends with 1 where an event took more than 50 ms of processor time, or 100 ms with more than
// 100,000 rows.

#include "actions/CompositeRenameAction.h"
#include "common/TemporaryFolder.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/RenameEngine.h"
#include "presentation/MainWindow.h"
#include "presentation/TavrinApplication.h"
#include "presentation/history/HistoryWindow.h"
#include "presentation/history/RunTable.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/start/FileAddress.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <ctime>
#include <functional>
#include <optional>
#include <ranges>

namespace tavrin {

namespace {

constexpr qint64 restTime = 400;

double processorTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

/// Measures each event that is delivered from the event loop, with all that it sets off.
class TimedApplication final : public QApplication {
  public:
    using QApplication::QApplication;

    struct Longest {
        double time = 0;
        double processor = 0;
        QString what;
    };

    bool notify(QObject* receiver, QEvent* event) override {
        if (depth > 0)
            return QApplication::notify(receiver, event);
        const QString what = QString("%1 %2, event %3")
                                 .arg(receiver->metaObject()->className(), receiver->objectName())
                                 .arg(static_cast<int>(event->type()));
        bool result = false;
        measure(what, [&] { result = QApplication::notify(receiver, event); });
        return result;
    }

    void measure(const QString& what, const std::function<void()>& work) {
        ++depth;
        QElapsedTimer clock;
        clock.start();
        const double before = processorTime();
        work();
        const double processor = processorTime() - before;
        const double time = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
        --depth;
        if (processor > 1)
            lastWork.start();
        if (processor > longest.processor)
            longest = {std::max(time, longest.time), processor, what};
        longest.time = std::max(time, longest.time);
    }

    Longest longest;
    QElapsedTimer lastWork; ///< since the last event that did anything to speak of

  private:
    int depth = 0;
};

/// Looks at each painting of a table whether what is awaited is on it, and notes when it was.
class PaintedRows final : public QObject {
  public:
    PaintedRows(QTableView& watched, int rowsAwaited) : table(watched), awaited(rowsAwaited) {
        table.viewport()->installEventFilter(this);
        clock.start();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            const auto now = static_cast<double>(clock.nsecsElapsed()) * 1e-6;
            if (!first && haveNewNames(0, firstRows))
                first = now;
            if (!all && table.model()->rowCount() >= awaited && haveNewNames(0, awaited))
                all = now;
        }
        return false;
    }

    std::optional<double> first; ///< in milliseconds, like the next
    std::optional<double> all;

  private:
    static constexpr int firstRows = 50;

    /// Of all rows some are looked at.
    [[nodiscard]] bool haveNewNames(int from, int to) const {
        const QAbstractItemModel& rows = *table.model();
        const int distance = std::max(1, (to - from) / firstRows);
        for (int row = from; row < to; row += distance)
            if (rows.index(row, PreviewTableModel::newName).data() ==
                rows.index(row, PreviewTableModel::currentName).data())
                return false;
        return from < rows.rowCount();
    }

    QTableView& table;
    const int awaited;
    QElapsedTimer clock;
};

class WindowBenchmark {
  public:
    WindowBenchmark(TimedApplication& timedApplication, std::size_t rows, std::size_t folders)
        : timed(timedApplication), limit(rows > 100000 ? 100 : 50) {
        for (std::size_t i = 0; i < rows; ++i) {
            const std::string folder = folders > 1 ? "folder " + std::to_string(i % folders) + "/" : "";
            paths.push_back(files.write(folder + "IMG_" + std::to_string(i) + " of the trip.jpg"));
        }
        TavrinApplication::Options options;
        options.defaultsPath = data.path("defaults.plist");
        options.dataFolder = data.path();
        application = std::make_unique<TavrinApplication>(options);
        application->start({});
        controller().globalSettings().setValue(0, "quickLookThumbnail");
        table = application->window().findChild<QTableView*>("previewTableView");
        rest();
    }

    bool runArrivals() {
        arrive("a folder is dropped", {files.path()});
        arrive("all its files are dropped", paths);
        controller().actionListCommands().chooseAction(
            *ActionList::sharedActionList().popUpMenuIndexForName("Add to front"));
        current().setValue(std::u16string(u"Trip "), "string");
        arrive("a folder, steps without numbers", {files.path()});
        arrive("all its files, steps without numbers", paths);
        return worst > limit;
    }

    bool run() {
        step("fill", [this] { application->open(paths); });
        step("scroll from top to bottom", [this] { scroll(*table); });
        step("changed parameter", [this] { current().setValue(std::u16string(u"Trip "), "prefix"); });
        step("sort order", [this] { current().setValue(11, "sortingMode"); });
        step("select all", [this] { table->selectAll(); });
        step("refresh with all selected", [this] { controller().previewControl().refreshPreview(); });
        step("changed parameter with all selected",
             [this] { current().setValue(std::u16string(u"Lake "), "prefix"); });
        step("sort order with all selected", [this] { current().setValue(10, "sortingMode"); });
        step("select a thousand places", [this] { selectEach(rowCount() / 4000 + 1); });
        step("sort order with these selected", [this] { current().setValue(11, "sortingMode"); });
        step("select one", [this] { table->selectRow(rowCount() / 2); });
        step("move row up", [this] { command("moveRowUp"); });
        step("move row down", [this] { command("moveRowDown"); });
        step("sort by new name", [this] { sortBy(PreviewColumn::newName); });
        step("sort by new name, turned", [this] { sortBy(PreviewColumn::newName); });
        step("sort by folder", [this] { sortBy(PreviewColumn::path); });
        step("back to the own order", [this] { controller().previewControl().endSorting(); });
        step("name one row by hand", [this] {
            const auto row = controller().nodeController().rowAt(5);
            controller().handEdits().pin(*row, u"by hand");
        });
        step("name all rows by hand", [this] { pinAll(); });
        step("changed parameter with these names",
             [this] { current().setValue(std::u16string(u"Hill "), "prefix"); });
        step("unpin all", [this] { controller().handEdits().unpinAll(); });
        step("leave all rows out", [this] {
            controller().handEdits().setTakesPart(controller().nodeController().arrangedObjects(), false);
        });
        step("tick all", [this] { controller().handEdits().tickAll(); });
        step("open the names as text", [this] { command("namesAsText"); });
        step("paste that many lines", [this] { pasteLines(); });
        step("select a block over that many lines", [this] {
            application->window().findChild<QPlainTextEdit*>("namesAsText")->selectAll();
            typeIntoLines(Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
        });
        step("type into the block", [this] { typeIntoLines(Qt::Key_X); });
        step("delete in the block", [this] { typeIntoLines(Qt::Key_Backspace); });
        step("copy the block", [this] { typeIntoLines(Qt::Key_C, Qt::ControlModifier); });
        step("back to the list",
             [this] { application->window().findChild<QPushButton*>("backToList")->click(); });
        step("back to the names of the steps", [this] { controller().handEdits().restore({}); });
        step("look again", [this] { controller().lookAgain(); });
        step("find in every name", [this] { find("trip"); });
        step("find, without success", [this] { find("no such name"); });
        step("show those to be renamed", [this] { pane().setShow(PreviewPane::Show::toBeRenamed); });
        step("show all", [this] { pane().setShow(PreviewPane::Show::all); });
        step("run marks, ten thousand failures", [this] { markRun(); });
        step("find the failures again", [this] { pane().previewFinished(); });
        step("show those not renamed", [this] { pane().setShow(PreviewPane::Show::notRenamed); });
        step("show all but marks", [this] { pane().setShow(PreviewPane::Show::all); });
        step("select 1000", [this] { selectRows(500, 1499); });
        step("move 1000 rows down", [this] { command("moveRowDown"); });
        step("copy 1000 rows", [this] { pane().copySelected(); });
        step("remove 1000 rows", [this] { command("removeFile"); });
        lookAtHistory();
        step("all rows are problems", [this] {
            controller().globalSettings().setValue(2, settingKey::onConflict);
            controller().actionListCommands().chooseAction(
                *ActionList::sharedActionList().popUpMenuIndexForName("Completely rename"));
            current().setValue(std::u16string(u"same"), "newName");
        });
        step("show problems", [this] { pane().setShow(PreviewPane::Show::problems); });
        step("next problem", [this] { pane().goToProblem(true); });
        step("select all problems", [this] { table->selectAll(); });
        step("copy all rows", [this] { pane().copySelected(); });
        step("show all again", [this] { pane().setShow(PreviewPane::Show::all); });
        step("name all rows by hand again", [this] { pinAll(); });
        step("rename", [this] {
            controller().globalSettings().setValue(0, "interactiveMode");
            controller().ok();
        });
        step("remove all rows", [this] {
            table->selectAll();
            command("removeFile");
        });
        return worst > limit;
    }

  private:
    MainController& controller() { return application->controller(); }
    PreviewPane& pane() { return application->window().previewPane(); }
    BaseRenameAction& current() { return controller().compositeAction().getCurrentAction(); }
    int rowCount() { return table->model()->rowCount(); }
    void command(const char* name) { application->window().findChild<QAction*>(name)->trigger(); }

    void arrive(const char* name, const std::vector<std::string>& dropped) {
        controller().clearList();
        controller().globalSettings().setValue(1, settingKey::processSubfolders);
        rest();
        QByteArray addresses;
        for (const std::string& path : dropped)
            addresses += FileAddress::ofPath(path) + "\r\n";
        QMimeData content;
        content.setData("text/uri-list", addresses);
        QDropEvent drop({10, 10}, Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
        PaintedRows painted(*table, static_cast<int>(paths.size()));
        step(name, [&] { static_cast<QObject&>(application->window()).event(&drop); });
        std::printf("    first rows %.0f ms, all rows %.0f ms\n", painted.first.value_or(-1),
                    painted.all.value_or(-1));
    }

    void sortBy(PreviewColumn column) { controller().previewControl().sortBy(column); }

    /// As one paste of so many lines would.
    void pinAll() {
        std::vector<NameByHand> names;
        for (std::size_t i = 0; i < paths.size(); ++i)
            names.push_back({paths[i], text::fromUtf8("by hand " + std::to_string(i))});
        controller().handEdits().pin(std::move(names));
    }

    void pasteLines() {
        QString names;
        for (std::size_t i = 0; i < paths.size(); ++i)
            names += QString("pasted %1\n").arg(i);
        QApplication::clipboard()->setText(names);
        auto* page = application->window().findChild<QPlainTextEdit*>("namesAsText");
        page->selectAll();
        QMetaObject::invokeMethod(page, "paste"); // not that of the base class
    }

    void typeIntoLines(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, key == Qt::Key_X ? "x" : "");
        QApplication::sendEvent(application->window().findChild<QPlainTextEdit*>("namesAsText"), &event);
    }

    void selectEach(int distance) {
        QItemSelection rows;
        for (int row = 0; row < rowCount() / 4; row += distance)
            rows.select(table->model()->index(row, 0), table->model()->index(row, 0));
        table->selectionModel()->select(rows,
                                        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }

    void selectRows(int first, int last) {
        table->selectionModel()->select(
            QItemSelection(table->model()->index(first, 0), table->model()->index(last, 0)),
            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }

    void find(const QString& text) {
        command("findInList");
        auto* field = application->window().findChild<QLineEdit*>("findField");
        field->setText(text);
        emit field->textEdited(text);
    }

    /// What a run tells of the rows, taken over and painted tick by tick.
    void markRun() {
        RunOutcomes& outcomes = controller().renameEngine().runOutcomes();
        const std::vector<RowId> rows = controller().nodeController().arrangedObjects();
        outcomes.begin(std::vector<bool>(*std::ranges::max_element(rows) + 1, true), std::nullopt);
        pane().beginRun();
        constexpr std::size_t ticks = 20;
        for (std::size_t tick = 0; tick < ticks; ++tick)
            QMetaObject::invokeMethod(
                table,
                [this, &outcomes, rows, tick] {
                    for (std::size_t i = tick; i < rows.size(); i += ticks)
                        if (i < RunOutcomes::mostFailures)
                            outcomes.fail(rows[i], {paths[i], u"", "Title", "Message", "reason"});
                        else
                            outcomes.set(rows[i], RunOutcome::done);
                    pane().refreshProgress();
                    table->viewport()->repaint();
                    if (tick + 1 == ticks)
                        pane().endRun();
                },
                Qt::QueuedConnection);
    }

    /// The run that has renamed all rows, in the window of past runs.
    void lookAtHistory() {
        controller().globalSettings().setValue(0, "interactiveMode");
        step("rename all rows", [this] { command("ok"); });
        step("open the history", [this] { command("showHistory"); });
        HistoryWindow* history = nullptr;
        for (QWidget* window : QApplication::topLevelWidgets())
            history = history ? history : qobject_cast<HistoryWindow*>(window);
        auto* items = history->findChild<RunTable*>();
        int changes = 0;
        QObject::connect(items, &RunTable::looked, [&changes] { ++changes; });
        QObject::connect(items->model(), &QAbstractItemModel::modelReset, [&changes] { ++changes; });
        const auto stepWithChange = [&](const char* name, const std::function<void()>& work) {
            changes = 0;
            step(name, work, [&changes] { return changes > 0; });
        };
        stepWithChange("where its items are", [this] { command("showHistory"); });
        step("scroll through them", [this, items] { scroll(*items); });
        const auto sort = [items] { emit items->horizontalHeader()->sectionClicked(2); };
        stepWithChange("sort them by new name", sort);
        stepWithChange("sort them, turned", sort);
        step("select them all", [items] { items->selectAll(); });
        stepWithChange("where they are, all selected", [this] { command("showHistory"); });
        step("copy them", [items] {
            QKeyEvent key(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
            QApplication::sendEvent(items, &key);
        });
        stepWithChange("filter them",
                       [history] { history->findChild<QLineEdit*>("historyFilter")->setText("9"); });
        stepWithChange("all of them",
                       [history] { history->findChild<QLineEdit*>("historyFilter")->clear(); });
        auto* count = history->findChild<QLabel*>("historyHitCount");
        for (const char* text : {"trip", "no such name"}) {
            const QString before = count->text();
            step(
                "find a name in all runs",
                [&] { history->findChild<QLineEdit*>("historyFind")->setText(text); },
                [&] { return count->text() != before; });
        }
        stepWithChange("take the run back", [this] { command("undoRename"); });
        step("close the history", [history] { history->close(); });
    }

    /// By events of their own, as the wheel does it.
    static void scroll(QTableView& view) {
        QScrollBar* bar = view.verticalScrollBar();
        for (int value = 0; value <= bar->maximum(); value += std::max(1, bar->maximum() / 400))
            QMetaObject::invokeMethod(
                bar, [bar, value] { bar->setValue(value); }, Qt::QueuedConnection);
    }

    /// Until nothing has happened for a while, and what was awaited has.
    void rest(const std::function<bool()>& hasCome = [] { return true; }) {
        timed.lastWork.start();
        QTimer wake;
        wake.start(20);
        while (timed.lastWork.elapsed() < restTime || !hasCome() ||
               controller().previewControl().isPreviewPending() || controller().renameEngine().isBusy())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    void step(
        const char* name, const std::function<void()>& work,
        const std::function<bool()>& hasCome = [] { return true; }) {
        timed.longest = {};
        QElapsedTimer clock;
        clock.start();
        timed.measure("the command itself", work);
        rest(hasCome);
        std::printf("%-38s %7.0f ms   longest event %6.1f ms, processor %6.1f ms%s  %s\n", name,
                    static_cast<double>(clock.elapsed() - restTime), timed.longest.time,
                    timed.longest.processor, timed.longest.processor > limit ? " !" : "  ",
                    qUtf8Printable(timed.longest.what));
        std::fflush(stdout);
        worst = std::max(worst, timed.longest.processor);
    }

    TimedApplication& timed;
    const double limit; ///< of one event, in milliseconds
    test::TemporaryFolder data;
    test::TemporaryFolder files;
    std::vector<std::string> paths;
    std::unique_ptr<TavrinApplication> application;
    QTableView* table = nullptr;
    double worst = 0;
};

} // namespace

} // namespace tavrin

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    tavrin::TimedApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    const auto number = [&](int place, std::size_t otherwise) {
        return argc > place ? std::stoul(argv[place]) : otherwise;
    };
    const bool isLate = tavrin::WindowBenchmark(application, number(1, 100000), number(2, 1)).runArrivals();
    if (argc > 3)
        return isLate;
    return tavrin::WindowBenchmark(application, number(1, 100000), number(2, 1)).run() || isLate;
}
