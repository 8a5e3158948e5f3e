#pragma once

#include "common/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QtTest>
#include <filesystem>

namespace tavrin::test {

/// Starts of the real program, as processes of a user who has nothing yet, in a session without a bus.
class UsersProgram {
  public:
    UsersProgram() { QFile::setPermissions(home.makeFolder("run").c_str(), QFile::Permissions(0x7000)); }
    ~UsersProgram() {
        for (const auto& process : processes) {
            process->kill();
            process->waitForFinished(patience);
        }
    }

    QProcess& start(const std::vector<std::string>& arguments, const char* platform = "offscreen") {
        QStringList list;
        for (const std::string& argument : arguments)
            list.append(QFile::decodeName(argument.c_str()));
        return launch(TAVRIN_PROGRAM, list, platform);
    }
    /// The same for arguments that are not UTF-8, which Qt can't pass on.
    QProcess& startWithBytes(const std::vector<std::string>& arguments) {
        std::string content;
        for (const std::string& argument : arguments)
            content.append(argument).append(1, '\0');
        const std::string file = home.write("arguments", content);
        return launch("xargs", {"-0", "-x", "-s", "1500000", "-a", file.c_str(), TAVRIN_PROGRAM},
                      "offscreen");
    }
    /// Lets this process go on meanwhile; -1 where the program was ended by force, or took too long.
    static int statusOf(const QProcess& process) {
        const bool hasEnded = waitFor([&] { return process.state() == QProcess::NotRunning; });
        return hasEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    static bool waitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, patience);
    }

    static constexpr int patience = 20000; // milliseconds
    TemporaryFolder home;
    std::string bus = "unix:path=/nowhere/bus";

  private:
    QProcess& launch(const QString& program, const QStringList& arguments, const char* platform) {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment;
        for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "PATH"})
            if (const char* value = std::getenv(name))
                environment.insert(name, value);
        environment.insert("QT_QPA_PLATFORM", platform);
        environment.insert("QT_LOGGING_RULES", "*=false");
        environment.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(bus));
        environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(home.path("run")));
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
            environment.insert(name, QString::fromStdString(home.path()));
        process->setProcessEnvironment(environment);
        process->start(program, arguments);
        EXPECT_TRUE(process->waitForStarted(patience));
        processes.push_back(std::move(process));
        return *processes.back();
    }

    std::vector<std::unique_ptr<QProcess>> processes;
};

} // namespace tavrin::test
