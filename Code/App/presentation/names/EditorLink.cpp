#include "presentation/names/EditorLink.h"

#include "platform/files/EditorFile.h"
#include "presentation/FileBrowser.h"
#include "presentation/QtText.h"
#include "shell/names/NameLines.h"

#include <QFile>
#include <QLocale>
#include <QPointer>
#include <QThreadPool>
#include <algorithm>
#include <chrono>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::chrono::milliseconds restAfterSaving(150);

QString toPath(const std::string& bytes) { return QFile::decodeName(QByteArray::fromStdString(bytes)); }

QString reasonOf(int error) { return toQString(std::string_view(std::generic_category().message(error))); }

QString wordsFor(const EditorFile::Failure& failure) {
    using enum EditorFile::Fault;
    switch (failure.fault) {
    case unwritable:
        return EditorLink::tr("The file for the text editor cannot be written: %1")
            .arg(reasonOf(failure.error));
    case gone:
        return EditorLink::tr("The text editor’s file is gone: %1").arg(reasonOf(failure.error));
    case isLink:
        return EditorLink::tr("The text editor has put a link in the place of its file.");
    case noFile:
        return EditorLink::tr("What the text editor has left is no file.");
    case unreadable:
        return EditorLink::tr("The text editor’s file cannot be read: %1").arg(reasonOf(failure.error));
    case tooLong:
        return EditorLink::tr("The text editor’s file has more than %1.")
            .arg(QLocale().formattedDataSize(static_cast<qint64>(failure.mostBytes)));
    }
    return {};
}

} // namespace

struct EditorLink::Written {
    std::vector<std::string> paths; ///< by line, as what follows
    std::vector<std::u16string> texts;
    std::vector<bool> areLocked;
};

EditorLink::EditorLink() {
    rest.setSingleShot(true);
    rest.setInterval(restAfterSaving);
    connect(&rest, &QTimer::timeout, this, &EditorLink::look);
    const auto changed = [this] {
        if (!isOpen())
            return;
        watch();
        rest.start();
    };
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, changed);
    connect(&watcher, &QFileSystemWatcher::directoryChanged, this, changed);
}

EditorLink::~EditorLink() { work.cancel(); }

void EditorLink::open(std::vector<Line> lines) {
    if (!file)
        try {
            file = std::make_shared<EditorFile>("tavrin", "names.txt");
        } catch (const std::system_error& error) {
            emit failed(wordsFor({EditorFile::Fault::unwritable, error.code().value()}), {});
            return;
        }
    const auto text = std::make_shared<Written>();
    for (Line& line : lines) {
        text->paths.push_back(std::move(line.path));
        text->texts.push_back(std::move(line.text));
        text->areLocked.push_back(line.isLocked);
    }
    written = text;
    last = std::make_shared<const Changes>();
    rest.stop();
    using Result = std::pair<std::optional<EditorFile::Failure>, std::string>;
    work.start(
        [file = file, text](const LatestWork::Unwanted&) {
            std::string bytes = nameLines::fileOf(text->texts);
            auto failure = file->write(bytes);
            return Result(failure, std::move(bytes));
        },
        [this](Result result) {
            if (result.first) {
                close();
                emit failed(wordsFor(*result.first), {});
                return;
            }
            lastBytes = std::make_shared<const std::string>(std::move(result.second));
            watch();
            emit opened();
            FileBrowser::open(file->path(), [link = QPointer(this), opened = file.get()] {
                if (!link || link->file.get() != opened)
                    return;
                link->close();
                emit link->failed(tr("No program that opens texts could be started."),
                                  tr("Choose one for text files in the settings of the desktop."));
            });
        });
}

void EditorLink::close() {
    work.cancel();
    rest.stop();
    if (!file)
        return;
    for (const QStringList& each : {watcher.files(), watcher.directories()})
        if (!each.isEmpty())
            watcher.removePaths(each);
    file.reset();
    lastBytes.reset();
    QThreadPool::globalInstance()->start([texts = std::move(written), changes = std::move(last)] {});
}

/// The folder too, since many editors put another file in the place of this one.
void EditorLink::watch() {
    for (const std::string& path : {file->folder(), file->path()})
        if (const QString shown = toPath(path);
            !watcher.files().contains(shown) && !watcher.directories().contains(shown))
            watcher.addPath(shown);
}

void EditorLink::look() {
    if (!isOpen() || !lastBytes)
        return;
    work.start([file = file, written = written, last = last, lastBytes = lastBytes](
                   const LatestWork::Unwanted&) { return read(*file, *written, *last, *lastBytes); },
               [this](News news) { take(std::move(news)); });
}

EditorLink::News EditorLink::read(const EditorFile& file, const Written& written, const Changes& last,
                                  const std::string& lastBytes) {
    News news;
    const auto found = file.read();
    if (const auto* failure = std::get_if<EditorFile::Failure>(&found)) {
        news.failure = wordsFor(*failure);
        return news;
    }
    news.bytes = std::get<std::string>(found);
    if (news.bytes == lastBytes)
        return news;
    nameLines::Edited edited = nameLines::edited(news.bytes, written.texts);
    switch (edited.fault) {
    case nameLines::Edited::Fault::notUtf8:
        news.failure = tr("The file is not UTF-8.");
        news.detail = tr("Nothing was taken over. Save it as UTF-8.");
        break;
    case nameLines::Edited::Fault::otherCount:
        //: Of a file with names, one a line.
        news.failure =
            tr("The file has %L1 lines, %L2 are needed.").arg(edited.count).arg(written.texts.size());
        news.detail = tr("Nothing was taken over. Each item needs its line.");
        break;
    case nameLines::Edited::Fault::none:
        news.changes = std::move(edited.lines);
        news.saved = compare(news.changes, written, last, edited.changed);
        break;
    }
    return news;
}

std::shared_ptr<const EditorLink::Saved> EditorLink::compare(const Changes& changes, const Written& written,
                                                             const Changes& last, std::size_t cutLines) {
    const auto saved = std::make_shared<Saved>();
    saved->cutLines = cutLines;
    const auto put = [&](std::size_t line, const std::u16string& text, bool isNew) {
        if (written.areLocked[line]) {
            ++saved->lockedLines;
            return;
        }
        saved->lines.insert_or_assign(written.paths[line], Saved::Change{text, isNew});
    };
    auto former = last.begin();
    const auto putBack = [&](std::size_t end) {
        for (; former != last.end() && former->first < end; ++former)
            put(former->first, written.texts[former->first], true);
    };
    for (const auto& [line, text] : changes) {
        putBack(line);
        const bool isKnown = former != last.end() && former->first == line;
        put(line, text, !isKnown || former->second != text);
        former += isKnown ? 1 : 0;
    }
    putBack(written.texts.size());
    return saved;
}

void EditorLink::take(News news) {
    if (!news.bytes.empty())
        lastBytes = std::make_shared<const std::string>(std::move(news.bytes));
    if (!news.failure.isEmpty()) {
        emit failed(news.failure, news.detail);
    } else if (news.saved) {
        last = std::make_shared<const Changes>(std::move(news.changes));
        emit saved(news.saved);
    }
}

} // namespace tavrin
