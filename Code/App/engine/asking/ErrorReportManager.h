#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace tavrin {

class EngineHost;

/// The name of the exception's class, without its namespace.
std::string nameOfException(const std::exception& exception);
/// What the exception that it wraps says; empty for a plain one.
std::string detailsOfException(const std::exception& exception);

/// Gathers what is needed to understand a problem on a user's machine into one text file, and shows it.
class ErrorReportManager {
  public:
    /// The host must outlive the object.
    explicit ErrorReportManager(EngineHost& application) : host(application) {}

    /// A report that the user asked for.
    void writeErrorReport();
    void writeErrorReportWithException(const std::exception& exception);
    /// Texts are UTF-8. Blocks until the survey of the machine has ended; failures are silent.
    void writeErrorReportWithString(const std::string& body, const std::string& andTitle);

    /// What a command prints on its standard output, as UTF-8; its bytes count as ISO Latin 2. Run by csh
    /// where there is one, else by sh; cut at 1 MiB.
    static std::string runWithCommand(const std::string& command);
    /// The title of a report on a failure.
    static std::string titleOfFailureReport();
    /// Where the report lies, in bytes.
    static std::string reportPath();

  private:
    std::string databaseDump();

    EngineHost& host;
};

} // namespace tavrin
