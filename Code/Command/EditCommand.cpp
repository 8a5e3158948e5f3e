#include "Commands.h"
#include "Editor.h"
#include "NamesFile.h"
#include "PathArguments.h"
#include "Session.h"
#include "engine/naming/NameProblems.h"
#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace tavrin {

namespace {

/// A script that makes something else wrong each time must not go on for ever.
constexpr int mostOpenings = 100;

/// The items of a session in a file of names, and what is made of it.
class NamesInHand {
  public:
    /// Takes the items and the names that the preview gives them.
    explicit NamesInHand(Session& itemSession);

    [[nodiscard]] const NamesFile& file() const { return names; }
    /// Previews the names. What keeps items from them is wrong with their lines.
    void preview(NamesFile::Reading& reading);

  private:
    void add(StoreContext& context, RowId id);
    [[nodiscard]] GivenNames changesOf(const NamesFile::Reading& reading) const;

    Session& session;
    NamesFile names;
    std::vector<RowId> rows;          ///< by item
    std::vector<std::string> folders; ///< by item: where it lies
};

NamesInHand::NamesInHand(Session& itemSession) : session(itemSession) {
    StoreContext& context = session.context();
    const std::lock_guard lock(context.mutex());
    std::error_code ignored;
    const std::string workingFolder = std::filesystem::current_path(ignored).string();
    for (const RowId folder :
         context.fetch({FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0})) {
        const std::vector<RowId> children = context.fetch(
            {FetchEntity::file, session.filter().with(Predicate::hasParent(folder)), {{NodeKey::name}}, 0});
        if (!children.empty())
            names.beginFolder(shownFolder(context.fullPath(folder), workingFolder));
        for (const RowId id : children)
            add(context, id);
    }
}

void NamesInHand::add(StoreContext& context, RowId id) {
    std::string name(context.component(id));
    std::string start = name;
    if (context.row(id).diff) {
        const std::u16string wanted = context.finalName(id);
        if (!nameOnDisk::from(wanted, name, start)) {
            start = text::toUtf8(wanted); // to be put right by hand
            std::ranges::replace(start, '/', ':');
        }
    }
    rows.push_back(id);
    names.add({std::move(name), std::move(start)});
}

GivenNames NamesInHand::changesOf(const NamesFile::Reading& reading) const {
    StoreContext& context = session.context();
    const std::lock_guard lock(context.mutex());
    GivenNames changes;
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (reading.names[i] != names.items()[i].name)
            changes.push_back({context.fullPath(rows[i]), reading.names[i]});
    return changes;
}

void NamesInHand::preview(NamesFile::Reading& reading) {
    session.giveNames(changesOf(reading));
    session.preview();
    if (session.wasInterrupted())
        return;
    StoreContext& context = session.context();
    const std::lock_guard lock(context.mutex());
    std::unordered_map<RowId, std::string> reasons;
    for (const RowId id : rowsWithProblems(context, session.filter()))
        reasons.emplace(id, problemOf(context, id)->message);
    for (std::size_t i = 0; i < rows.size() && !reasons.empty(); ++i) {
        const auto reason = reasons.find(rows[i]);
        if (reason == reasons.end() || reading.names[i] == names.items()[i].name)
            continue;
        reading.wrong.emplace(reading.lines[i], reason->second);
    }
}

/// Nothing was renamed: says why, with the lines as they are in the file. False.
bool tellWrongLines(const NamesFile::Reading& reading, std::string_view end, Terminal& terminal) {
    std::size_t marks = 0; // each in a line of its own
    for (const auto& [line, reason] : reading.wrong)
        terminal.complain(fmt::format("tvrn edit: line {}: {}", line + ++marks, reason));
    terminal.complain(fmt::format("tvrn edit: the file {}; nothing was renamed", end));
    return false;
}

/// Whether the user has settled on names, which are those of the session's preview then.
bool settleNames(Session& session, NamesInHand& names) {
    Editor editor(session.interruptHandler());
    std::string text = names.file().text();
    std::optional<NamesFile::Reading> last; // what is wrong with the text
    for (int opening = 0; !session.wasInterrupted(); ++opening) {
        const auto edited = editor.edit(text);
        if (const auto* failure = std::get_if<Editor::Failure>(&edited)) {
            session.terminal().complain(fmt::format("tvrn edit: {}; nothing was renamed", failure->reason));
            return false;
        }
        const auto& found = std::get<std::string>(edited);
        NamesFile::Reading reading = names.file().read(found);
        if (last && (!reading.hasLines || NamesFile::isSame(found, text)))
            return tellWrongLines(*last, "was left as it was", session.terminal());
        if (reading.wrong.empty())
            names.preview(reading);
        if (reading.wrong.empty())
            return !session.wasInterrupted();
        if (opening == mostOpenings)
            return tellWrongLines(reading, "never comes right", session.terminal());
        text = NamesFile::marked(found, reading.wrong);
        last = std::move(reading);
    }
    return false;
}

} // namespace

ExitStatus runEditCommand(const EditOptions& options) {
    Session session(options.rename.run);
    session.stopAtProblems();
    prepare(session, options.rename);
    session.preview();
    if (session.wasInterrupted())
        return session.finish();
    NamesInHand names(session);
    if (!names.file().items().empty() && !settleNames(session, names)) {
        return session.terminal().finish(ExitStatus::stopped);
    }
    if (options.dryRun) {
        PreviewOptions form;
        form.color = options.color;
        printPreview(form, session);
        return session.finish();
    }
    return rename(session, options.rename);
}

} // namespace tavrin
