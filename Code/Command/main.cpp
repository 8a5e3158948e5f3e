#include "CommandLine.h"
#include "Commands.h"
#include "ExitStatus.h"
#include "RecipeLoader.h"
#include "Terminal.h"
#include "platform/files/Descriptor.h"

#include <csignal>
#include <exception>
#include <malloc.h>
#include <string>

namespace {

using namespace tavrin;

struct Runner {
    ExitStatus operator()(const PreviewOptions& options) const { return runPreviewCommand(options); }
    ExitStatus operator()(const RenameOptions& options) const { return runRenameCommand(options); }
    ExitStatus operator()(const EditOptions& options) const { return runEditCommand(options); }
    ExitStatus operator()(const HistoryOptions& options) const { return runHistoryCommand(options); }
    ExitStatus operator()(const TakeBackOptions& options) const { return runTakeBackCommand(options); }
    ExitStatus operator()(const RecipeTextOptions& options) const { return runRecipeCommand(options); }
    ExitStatus operator()(const ActionsOptions& options) const { return runActionsCommand(options); }
    ExitStatus operator()(const TagsOptions& options) const { return runTagsCommand(options); }
    ExitStatus operator()(const PresetsOptions& options) const { return runPresetsCommand(options); }
    ExitStatus operator()(const CommandLineEnd& end) const {
        Terminal terminal;
        if (end.status == 0) {
            terminal.output().append(end.text);
            return terminal.finish();
        }
        terminal.complain(end.text);
        terminal.complain(end.hint);
        return ExitStatus{end.status};
    }
};

ExitStatus run(const CommandLine& commandLine) {
    try {
        return std::visit(Runner(), commandLine);
    } catch (const RecipeTextError& error) {
        Terminal terminal;
        terminal.complain(std::string("tvrn: ") + error.what());
        if (!error.remark().excerpt.empty())
            for (const std::string& line : excerptOf(error.remark(), terminal.errorColumns()))
                terminal.complain(line);
        return ExitStatus::badUsage;
    } catch (const UsageError& error) {
        Terminal().complain(std::string("tvrn: ") + error.what());
        return ExitStatus::badUsage;
    } catch (const std::exception& error) {
        Terminal().complain(std::string("tvrn: an unexpected failure: ") + error.what());
        return ExitStatus::itemsFailed;
    }
}

} // namespace

int main(int count, char** arguments) {
    openStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN);
    // One heap: the main thread waits while the worker works, and a heap of its own for each would keep what
    // the other has freed.
    mallopt(M_ARENA_MAX, 1);
    return static_cast<int>(run(parseCommandLine({arguments + 1, arguments + count})));
}
