#include "presentation/FileBrowser.h"

#include "platform/files/Descriptor.h"
#include "platform/processes/SpawnSettings.h"
#include "support/text/PathParts.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QSocketNotifier>
#include <QUrl>
#include <chrono>
#include <fcntl.h>
#include <memory>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tavrin {

namespace {

/// The address of a path: its bytes escaped one by one, so that names that are not UTF-8 stay whole.
QUrl addressOf(const std::string& path) {
    const QByteArray escaped = QByteArray::fromStdString(path).toPercentEncoding("/");
    return QUrl::fromEncoded("file://" + escaped, QUrl::StrictMode);
}

void openAddress(const QUrl& address) {
    if (!QDesktopServices::openUrl(address))
        QApplication::beep();
}

/// A command that opened nothing ends sooner; one that has taken longer was the program itself.
constexpr std::chrono::seconds longestFailure{5};

const std::vector<std::vector<std::string>>& openers() {
    static const std::vector<std::vector<std::string>> commands{{"xdg-open"}, {"gio", "open"}};
    return commands;
}

/// Calls with the exit status when the program has ended, if that happens before this one does. False when it
/// could not be started.
bool startProgram(const std::vector<std::string>& arguments, std::function<void(int status)> ended) {
    SpawnSettings settings;
    settings.open("/dev/null", O_RDONLY, STDIN_FILENO);
    settings.open("/dev/null", O_WRONLY, STDOUT_FILENO);
    settings.open("/dev/null", O_WRONLY, STDERR_FILENO);
    pid_t child = 0;
    if (settings.spawn(child, arguments, SpawnSettings::ownEnvironment()) != 0)
        return false;
    auto process = std::make_shared<Descriptor>(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    if (!*process)
        return true;
    auto* news = new QSocketNotifier(process->get(), QSocketNotifier::Read, qApp);
    QObject::connect(news, &QSocketNotifier::activated, news, [news, process, child, ended] {
        news->setEnabled(false);
        news->deleteLater();
        int status = 0;
        ::waitpid(child, &status, 0);
        ended(status);
    });
    return true;
}

void openBy(std::size_t opener, const std::string& path, const std::function<void()>& failed) {
    if (opener == openers().size()) {
        QMetaObject::invokeMethod(qApp, failed, Qt::QueuedConnection);
        return;
    }
    std::vector<std::string> arguments = openers()[opener];
    arguments.push_back(path);
    const auto start = std::chrono::steady_clock::now();
    const bool isStarted = startProgram(arguments, [=](int status) {
        if (status != 0 && std::chrono::steady_clock::now() - start < longestFailure)
            openBy(opener + 1, path, failed);
    });
    if (!isStarted)
        openBy(opener + 1, path, failed);
}

} // namespace

void FileBrowser::reveal(const std::string& path) {
    const std::string folder(PathParts(path).folder);
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                       "org.freedesktop.FileManager1", "ShowItems");
    call << QStringList{QString::fromLatin1(addressOf(path).toEncoded())} << QString();
    if (!QDBusConnection::sessionBus().isConnected()) {
        openAddress(addressOf(folder));
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
        const QDBusPendingReply<> reply = *watcher;
        if (reply.isError())
            openAddress(addressOf(folder));
        watcher->deleteLater();
    });
}

void FileBrowser::open(const std::string& path) { openAddress(addressOf(path)); }

void FileBrowser::open(const std::string& path, const std::function<void()>& failed) {
    openBy(0, path, failed);
}

} // namespace tavrin
