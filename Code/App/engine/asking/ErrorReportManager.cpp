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

#include <array>
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

/// What the bytes A0 to FF stand for; those below stand for themselves.
constexpr std::array<char16_t, 96> upperHalf{
    0x00A0, 0x0104, 0x02D8, 0x0141, 0x00A4, 0x013D, 0x015A, 0x00A7, 0x00A8, 0x0160, 0x015E, 0x0164,
    0x0179, 0x00AD, 0x017D, 0x017B, 0x00B0, 0x0105, 0x02DB, 0x0142, 0x00B4, 0x013E, 0x015B, 0x02C7,
    0x00B8, 0x0161, 0x015F, 0x0165, 0x017A, 0x02DD, 0x017E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102,
    0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170,
    0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

/// The output of the survey is ISO 8859-2.
std::string latin2ToUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 0xA0 ? static_cast<char16_t>(byte) : upperHalf[byte - 0xA0U];
    }
    return text::toUtf8(text);
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
    return latin2ToUtf8(ChildProcess::run(request).output);
}

} // namespace tavrin
