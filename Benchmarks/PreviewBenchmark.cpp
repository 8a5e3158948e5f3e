#include "actions/ActionList.h"
#include "platform/desktop/ResourceFolder.h"
#include "platform/processes/QueueRunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/MainController.h"
#include "shell/asking/FrontEnd.h"
#include "support/text/Text.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace tavrin {
namespace {

/// A tree of empty files that goes at the end.
class FileTree {
  public:
    FileTree(int folders, int filesPerFolder) {
        std::string name = (std::filesystem::temp_directory_path() / "tavrin-bench-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder to be had");
        root = name;
        for (int i = 0; i < folders; ++i) {
            const std::filesystem::path folder = root / fmt::format("folder {:05d}", i);
            std::filesystem::create_directory(folder);
            for (int j = 0; j < filesPerFolder; ++j)
                ::close(::open((folder / nameOf(j)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        }
    }
    ~FileTree() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
    FileTree(const FileTree&) = delete;
    FileTree& operator=(const FileTree&) = delete;

    std::filesystem::path root;

  private:
    static std::string nameOf(int number) {
        constexpr const char* words[] = {"mountain", "harbour", "été",    "lighthouse", "garden",
                                         "Straße",   "winter",  "bridge", "niño",       "river"};
        return fmt::format("{} IMG_{:07d} {}.jpeg", words[number % 10], number, words[number / 10 % 10]);
    }
};

/// Nobody sees anything and nobody is asked.
class SilentFrontEnd : public FrontEnd {
  public:
    void showAlert(const Alert&, std::function<void(AlertAnswer)>) override {}
    void showNotice(NoticeDialog, std::function<void(NoticeAnswer)>) override {}
    void ask(const RunQuestion&, std::function<void(ConfirmationChoice)>) override {}
    void showProcessingErrors(const FailureReport&, std::function<void()>) override {}
    void askForFilesToAdd(const std::string&, std::function<void(std::optional<FilesToAdd>)>) override {}
    void askForFileListFormat(std::function<void(FileListChoice)>) override {}
    void askForSavePath(const std::string&, std::function<void(std::optional<std::string>)>) override {}
    void presentError(const std::string&) override {}
    void presentNotice(const std::string&) override {}
    void terminate() override {}
    void previewFinished() override { hasFinished = true; }

    bool hasFinished = false;
};

/// The application over a tree that has been read and previewed once.
class Application {
  public:
    Application(int folders, int filesPerFolder) : tree(folders, filesPerFolder) {
        UserDefaults::setSharedInstance(&defaults);
        defaults.setObject("store", 1);
        defaults.setObject("loggerIsOn", false);
        actions = std::make_unique<ActionList>();
        ActionList::setSharedActionList(actions.get());
        MainController::Options options = MainController::Options::standard();
        options.usesUserFolders = false;
        options.followsChanges = false;
        controller = std::make_unique<MainController>(
            MainController::Environment{frontEnd, loop, defaults, *actions}, options);
        controller->globalSettings().setShouldProcessSubfolders(1);
        controller->sourceCommands().addPaths({tree.root.string()});
        setSteps(1);
        preview();
        // What was seen of folders that have just changed is not trusted, and seen again the next time.
        std::this_thread::sleep_for(std::chrono::milliseconds(3100));
        preview();
    }
    ~Application() {
        loop.close();
        controller.reset();
        ActionList::setSharedActionList(nullptr);
        UserDefaults::setSharedInstance(nullptr);
    }
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Steps of literal text, all of which change something. The last of them, which is in hand, takes so
    /// many characters away where it is the fifth.
    void setSteps(int count, int removed = 1) {
        PropertyArray steps;
        const auto add = [&](const char16_t* name, PropertyDictionary parameters) {
            if (static_cast<int>(steps.size()) < count)
                steps.push_back(PropertyDictionary{{"action name", name},
                                                   {"action parameter list", std::move(parameters)}});
        };
        add(u"Replace text", {{"searchTerm", u"IMG_"}, {"replacementTerm", u"Beach "}});
        add(u"Add to end", {{"string", u"-x"}});
        add(u"Make lowercase", {});
        add(u"Insert at position", {{"position", 3}, {"text", u"+"}});
        add(u"Remove from end", {{"numberOfCharacters", removed}});
        controller->compositeAction().setFlatParameterList(PropertyDictionary{
            {"currentActionIndex", count - 1}, {"composite actions array", std::move(steps)}});
    }

    /// From now on names are kept for the next preview, as in the window.
    void keepNames() { controller->renameEngine().expectManyPreviews(); }

    void preview() {
        frontEnd.hasFinished = false;
        controller->previewControl().showPreview();
        loop.runUntil([this] { return frontEnd.hasFinished && !controller->renameEngine().isBusy(); });
    }

    [[nodiscard]] PreviewList& list() { return controller->nodeController(); }

  private:
    FileTree tree;
    UserDefaults defaults;
    QueueRunLoop loop;
    SilentFrontEnd frontEnd;
    std::unique_ptr<ActionList> actions;
    std::unique_ptr<MainController> controller;
};

double secondsOf(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void setShape(benchmark::internal::Benchmark* benchmark) {
    // A fixed number, since the trees are made anew for each attempt to find one.
    benchmark->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(20);
}

/// From the request to the end of the pipeline, nothing new to read: folders, files in each, steps.
void preview(benchmark::State& state) {
    Application application(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    application.setSteps(static_cast<int>(state.range(2)));
    for (auto _ : state)
        state.SetIterationTime(secondsOf([&] { application.preview(); }));
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}
BENCHMARK(preview)
    ->Apply(setShape)
    ->ArgNames({"folders", "files", "steps"})
    ->Args({100, 100, 1})
    ->Args({1, 100'000, 1})
    ->Args({1, 100'000, 5})
    ->Args({1000, 100, 1})
    ->Args({1000, 100, 5});

/// The same after each change of the last of five steps, which gives each item another name: folders, files.
void changeOfTheLastStep(benchmark::State& state) {
    Application application(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    application.keepNames();
    int removed = 0;
    for (auto _ : state) {
        application.setSteps(5, 1 + ++removed % 3);
        state.SetIterationTime(secondsOf([&] { application.preview(); }));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}
BENCHMARK(changeOfTheLastStep)
    ->Apply(setShape)
    ->ArgNames({"folders", "files"})
    ->Args({1, 100'000})
    ->Args({1000, 100});

/// The list of the main context after a preview that changed final names alone.
void refetchInTheSameOrder(benchmark::State& state) {
    Application application(1, 100'000);
    int steps = 0;
    for (auto _ : state) {
        application.setSteps(1 + ++steps % 2);
        application.preview();
        state.SetIterationTime(secondsOf([&] {
            application.list().fetch();
            benchmark::DoNotOptimize(application.list().arrangedObjects().data());
        }));
    }
}
BENCHMARK(refetchInTheSameOrder)->Apply(setShape);

/// The same in natural order, behind which another key stands each time, so that no list at hand serves.
void refetchInANewOrder(benchmark::State& state) {
    constexpr NodeKey keys[] = {NodeKey::name, NodeKey::size, NodeKey::modDate, NodeKey::crDate,
                                NodeKey::exif};
    Application application(1, 100'000);
    std::size_t number = 0;
    for (auto _ : state) {
        application.preview();
        application.list().setSortDescriptors(
            {{NodeKey::smartName, number % 2 == 0}, {keys[number / 4 % 5], number / 2 % 2 == 0}});
        ++number;
        state.SetIterationTime(secondsOf([&] {
            application.list().fetch();
            benchmark::DoNotOptimize(application.list().arrangedObjects().data());
        }));
    }
}
BENCHMARK(refetchInANewOrder)->Apply(setShape);

} // namespace
} // namespace tavrin
