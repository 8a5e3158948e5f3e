#include "engine/asking/ErrorReportManager.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "platform/desktop/Quoting.h"
#include "platform/desktop/ResourceFolder.h"
#include "platform/files/FileSystem.h"
#include "platform/files/SandboxHelper.h"
#include "platform/processes/ChildProcess.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "support/application/Version.h"
#include "support/text/Text.h"

#include <fmt/chrono.h>

#include <cstdlib>
#include <ctime>
#include <cxxabi.h>
#include <memory>
#include <mutex>
#include <typeinfo>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::string_view productName = "Tavrin 9";
constexpr std::string_view supportAddress = "support@tavrin.example";
constexpr std::size_t outputLimit = 1 << 20;

std::string titleOfRequestedReport() {
    return fmt::format(
        "This report contains information designed to make it easier for us to track down "
        "problems and make {} an even better product.\n\nWhen you report a problem to us, we may "
        "ask you to create and send us this report to help us see exactly what happened on your "
        "Mac and what your configuration is like. This will save you having to laboriously "
        "assemble the information from different sources.\n\n---------\n\n",
        productName);
}

/// The first of the programs that can be run.
std::string firstExecutable(std::initializer_list<const char*> programs) {
    for (const char* program : programs) {
        if (::access(program, X_OK) == 0)
            return program;
    }
    return {};
}

std::string surveyOfMachine() {
    const std::string shell = firstExecutable({"/bin/tcsh", "/bin/csh", "/bin/sh"});
    return ErrorReportManager::runWithCommand(shell + " < " +
                                              quotedForShell(resourcePath("error_reporting.csh")));
}

} // namespace

std::string nameOfException(const std::exception& exception) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> readable(
        abi::__cxa_demangle(typeid(exception).name(), nullptr, nullptr, &status), std::free);
    const std::string name = status == 0 ? readable.get() : typeid(exception).name();
    const std::size_t scope = name.rfind("::");
    return scope == std::string::npos ? name : name.substr(scope + 2);
}

std::string detailsOfException(const std::exception& exception) {
    try {
        std::rethrow_if_nested(exception);
    } catch (const std::exception& inner) {
        return fmt::format("{}: {}", nameOfException(inner), inner.what());
    } catch (...) {
        return "unknown";
    }
    return {};
}

std::string ErrorReportManager::titleOfFailureReport() {
    return fmt::format(
        "This is an error report that contains information about the problem you just "
        "encountered.\n\nWe would appreciate it if you could email this file or its contents to "
        "us at {}.\n\nThe information can help us track down problems and make {} an even better "
        "product.\n\nOf course, we can only fix problems that we know about...\n\n---------\n\n",
        supportAddress, productName);
}

std::string ErrorReportManager::reportPath() {
    return SandboxHelper::getApplicationSupportFolderPath() + "/TVRN_error_report.txt";
}

void ErrorReportManager::writeErrorReport() { writeErrorReportWithString({}, titleOfRequestedReport()); }

void ErrorReportManager::writeErrorReportWithException(const std::exception& exception) {
    writeErrorReportWithString(fmt::format("Exception caught:\n{}: {}\n{}\n\n", nameOfException(exception),
                                           exception.what(), detailsOfException(exception)),
                               titleOfFailureReport());
}

void ErrorReportManager::writeErrorReportWithString(const std::string& body, const std::string& andTitle) {
    host.progressInfo().updateStageText("Writing error report...");
    std::string text = andTitle;
    text += fmt::format("Version: {} Time: {:%Y-%m-%d %H:%M:%S} +0000\n\n", programVersion,
                        fmt::gmtime(std::time(nullptr)));
    text += body;
    const std::string path = reportPath();
    FileSystem& files = FileSystem::sharedInstance();
    static_cast<void>(files.makeFolders(SandboxHelper::getApplicationSupportFolderPath()));
    static_cast<void>(files.removeFile(path));
    text += databaseDump();
    text += fmt::format("\n{}\n", surveyOfMachine());
    static_cast<void>(files.writeFileAtomically(path, text));
    host.runLoop().performAndWait([this, &path] { host.revealReport(path); });
}

/// Guarded, because a broken store is what reports are mostly about.
std::string ErrorReportManager::databaseDump() {
    try {
        StoreContext& context = host.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        return "----- Database Dump ---------\n\n" +
               RenameEngineUtilities::contentsOfDatabaseAsString(context) + "\n";
    } catch (const std::exception&) {
        return "database dump failed.\n";
    }
}

std::string ErrorReportManager::runWithCommand(const std::string& command) {
    ChildProcess::Request request;
    request.arguments = {firstExecutable({"/bin/csh", "/bin/sh"}), "-c", command};
    request.outputLimit = outputLimit;
    return text::toUtf8(text::fromCharset(ChildProcess::run(request).output, "ISO-8859-2"));
}

} // namespace tavrin
