#include "common/Testing.h"
#include "platform/propertylists/PropertyList.h"

#include <QtDBus>
#include <QtTest>

namespace tavrin::test {

using namespace ::testing;

/// What a screen reader hears of the real program: a display, a session bus and an accessibility bus of the
/// test's own.
class Speech : public Test {
  protected:
    Speech() {
        QFile::setPermissions(home.makeFolder("run").c_str(), QFile::Permissions(0x7000));
        environment.insert("PATH", qEnvironmentVariable("PATH"));
        environment.insert("QT_QPA_PLATFORM", "xcb");
        environment.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        environment.insert("NO_AT_BRIDGE", "0");
        for (const char* name :
             {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"})
            environment.insert(name, QString::fromStdString(home.path()));
        environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(home.path("run")));
    }
    ~Speech() override {
        for (const char* name : {"speech", "session"})
            QDBusConnection::disconnectFromBus(name);
        for (auto process = processes.rbegin(); process != processes.rend(); ++process) {
            (*process)->terminate();
            if (!(*process)->waitForFinished(2000))
                (*process)->kill();
            (*process)->waitForFinished(2000);
        }
    }

    QProcess& launch(const QString& program, const QStringList& arguments) {
        processes.push_back(std::make_unique<QProcess>());
        QProcess& process = *processes.back();
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForStarted(patience)) << program.toStdString();
        return process;
    }
    QString firstLineOf(QProcess& process) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return process.canReadLine(); }, patience));
        return QString::fromUtf8(process.readLine().trimmed());
    }
    QDBusMessage call(const QString& service, const char* path, const char* interface, const char* method,
                      const QVariantList& arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        return reader->call(message, QDBus::Block, patience);
    }

    /// Everything that a reader listens by, up to the bus that tells what has come up.
    void beginToListen() {
        environment.insert("DISPLAY", ":" + firstLineOf(launch("Xvfb", {"-displayfd", "1"})));
        QProcess& daemon = launch("dbus-daemon", {"--session", "--print-address", "--nofork"});
        session = firstLineOf(daemon);
        environment.insert("DBUS_SESSION_BUS_ADDRESS", session);
        sessionDaemon = &daemon;
        reader = QDBusConnection::connectToBus(session, "session");
        const QString address = call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
                                    .arguments()
                                    .value(0)
                                    .toString();
        ASSERT_FALSE(address.isEmpty());
        reader = QDBusConnection::connectToBus(address, "speech");
        const char* registry = "org.a11y.atspi.Registry";
        call(registry, "/org/a11y/atspi/registry", registry, "RegisterEvent",
             {"object:state-changed", QStringList(), ""});
        monitor = &launch("dbus-monitor", {"--address", address,
                                           "type=signal,interface='org.a11y.atspi.Event.Object',"
                                           "member='StateChanged',arg0='showing'"});
    }

    /// The names of all notifications that have come up by now.
    QStringList heard() {
        static const QRegularExpression signal("sender=(\\S+) -> .*path=([^;]+);");
        while (monitor->canReadLine()) {
            const auto match = signal.match(QString::fromUtf8(monitor->readLine()));
            if (!match.hasMatch() || !match.captured(2).contains("atspi/accessible"))
                continue;
            const QByteArray path = match.captured(2).toUtf8();
            const auto role = call(match.captured(1), path, "org.a11y.atspi.Accessible", "GetRole");
            constexpr uint notification = 101; // ATSPI_ROLE_NOTIFICATION
            if (role.arguments().value(0).toUInt() == notification)
                words.append(call(match.captured(1), path, "org.freedesktop.DBus.Properties", "Get",
                                  {"org.a11y.atspi.Accessible", "Name"})
                                 .arguments()
                                 .value(0)
                                 .value<QDBusVariant>()
                                 .variant()
                                 .toString());
        }
        return words;
    }

    static constexpr int patience = 20000; // milliseconds
    TemporaryFolder home;
    QProcessEnvironment environment;
    QString session;
    QProcess* sessionDaemon = nullptr;
    QProcess* monitor = nullptr;
    std::optional<QDBusConnection> reader;
    QStringList words;
    std::vector<std::unique_ptr<QProcess>> processes;
};

TEST_F(Speech, ReachesTheAccessibilityBusAndOutlivesTheSession) {
    ASSERT_NO_FATAL_FAILURE(beginToListen());
    home.write("net.calderwick.tvrn9.plist",
               PropertyList::toXml(PropertyDictionary{{"firstLaunchVersion", 90000}}));
    QProcess& program = launch(TAVRIN_PROGRAM, {});
    const auto isTold = [this] {
        return heard().filter("The settings of a newer version were found. They have been copied to").size();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return isTold() > 0; }, patience)) << words.join("|").toStdString();
    QTest::qWait(500);
    EXPECT_EQ(isTold(), 1) << words.join("|").toStdString();
    // The buses go, the window stays.
    sessionDaemon->kill();
    sessionDaemon->waitForFinished();
    EXPECT_FALSE(program.waitForFinished(1000)) << program.readAllStandardError().toStdString();
}

} // namespace tavrin::test
