#pragma once

#include "store/contexts/SmallEntities.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class ItemStore;
struct StoreChanges;

/// The store could not be read or a stored thing is broken: the one failure that ends a pipeline's attempt.
class StoreError;

/// The folders that some rows lie in: how many, and the deepest path that all lie in or below.
struct RowFolders {
    std::size_t count = 0;
    std::string common;
    bool operator==(const RowFolders&) const = default;
};

/// A view of the store with changes of its own. Reads see what the store holds, overlaid by the changes that
/// are staged here; `commit` makes these visible to all at once, `reset` drops them. A context belongs to one
/// thread. The main context is the exception: whoever uses it holds its `mutex()` meanwhile.
/// References into rows and views of texts are valid until the next call that reads another row, inserts,
/// commits, refaults or resets. Row operations throw StoreError when the store cannot be read; a row that
/// does not exist (any more) reads as an empty one, and writing to it changes nothing.
class StoreContext {
  public:
    /// What wins when a row was changed both here and in the store meanwhile.
    enum class MergePolicy { storeWins, contextWins };

    StoreContext(ItemStore& store, MergePolicy policy);
    ~StoreContext();
    StoreContext(const StoreContext&) = delete;
    StoreContext& operator=(const StoreContext&) = delete;

    [[nodiscard]] ItemStore& store() const;
    [[nodiscard]] std::recursive_mutex& mutex() const;

    // --- Fetching ---
    /// The matching rows, at most `limit`. A fetch with a limit is a cursor: asked again with the same
    /// conditions it goes on where it stopped, and wraps round once before it yields nothing; so it is meant
    /// for passes that mark what they have handled.
    std::vector<RowId> fetch(const FetchRequest& request);
    /// Visits the matching rows by ascending id, without holding them all. Nothing that the visitor
    /// does changes which rows match.
    void forEach(const FetchRequest& request, const std::function<void(RowId)>& visit);
    /// The same, some thousands at a time.
    void forEachPart(const FetchRequest& request, const std::function<void(std::span<const RowId>)>& visit);
    std::size_t count(FetchEntity entity, const Predicate& predicate);
    /// Goes up whenever the fetch may give other rows, or in another order.
    [[nodiscard]] std::uint64_t versionOf(const FetchRequest& request);
    /// Where the matching committed rows lie. Reads each of them.
    [[nodiscard]] RowFolders foldersOf(const FetchRequest& request);
    /// Puts committed rows, which come by ascending id, into the order that a fetch would give them.
    void sort(std::vector<RowId>& rows, const std::vector<SortDescriptor>& order);
    /// The row with this absolute path, folders and ghosts first; staged inserts included.
    RowId nodeWithPath(std::string_view path);
    /// The row of the folder with this absolute path; staged inserts included.
    RowId folderWithPath(std::string_view path);
    /// The `File` row with this absolute path.
    RowId fileWithPath(std::string_view path);
    /// One more than the highest id that any row of the store has had.
    [[nodiscard]] RowId endOfRows();
    /// The rows whose `parent` is this one, in reading order.
    std::vector<RowId> children(RowId folder);
    std::size_t childCount(RowId folder);

    // --- Rows ---
    [[nodiscard]] bool exists(RowId id);
    const NodeRow& row(RowId id);
    /// The attribute of that name, from what is always in memory.
    [[nodiscard]] bool treatAsFolder(RowId id);
    /// The same of whether it is left out.
    [[nodiscard]] bool isLeftOut(RowId id);
    /// The row for writing fixed attributes (not the texts, markers, parent or siblings).
    NodeRow& change(RowId id);
    /// The last path component as the file system gives it.
    std::string_view component(RowId id);
    /// The attribute `name`: the component as text with every ":" a "/".
    void name(RowId id, std::u16string& into);
    std::u16string name(RowId id);
    void finalName(RowId id, std::u16string& into);
    std::u16string finalName(RowId id);
    /// How finalName is held: nothing while it is the name, else its bytes, unless no file can bear it.
    struct HeldName {
        bool isName;
        bool hasBytes;
        std::string_view bytes; ///< with "/" as it is in the text
    };
    HeldName heldFinalName(RowId id);
    void setFinalName(RowId id, std::u16string_view text);
    /// Makes finalName equal name, at no cost.
    void setFinalNameToName(RowId id);
    /// Absolute path in bytes.
    std::string fullPath(RowId id);
    void fullPath(RowId id, std::string& into);
    /// The path of the containing folder.
    std::string parentPath(RowId id);
    PassMarker stageFlag(RowId id);
    void setStageFlag(RowId id, PassMarker marker);
    void setSecondaryStageFlag(RowId id, PassMarker marker);
    using RegexColumns = std::array<std::u16string, 6>;
    [[nodiscard]] std::optional<RegexColumns> regexColumns(RowId id);
    void setRegexColumns(RowId id, const RegexColumns& columns);
    [[nodiscard]] std::optional<PropertyData> tagData(RowId id);
    void setTagData(RowId id, PropertyData data);

    /// A new `File` row with the given parent; `finalName` is its name.
    RowId insertFile(RowId parent, std::string_view component, bool root, bool treatAsFolder,
                     std::int32_t manualOrder, const SeenItem& seen = {});
    /// A new `GhostNode` for the folder at `path`; with a parent where it lies in a folder that has a row.
    RowId insertGhostNode(std::string_view path, const FileIdentity& identity = {}, RowId parent = noRow);
    /// Deletes the row and, by cascade, all below it.
    void deleteRow(RowId id);
    /// Deletes up to `limit` rows of any kind, from the front; the count deleted.
    std::size_t deleteNodes(std::size_t limit);

    // --- The small entities ---
    /// The one row of counters, for writing; only what differs from what was read is committed.
    EngineControl& changeEngineControl();
    const EngineControl& engineControl();
    /// In the order added.
    std::vector<SourceItem> sourceItems();
    std::size_t sourceItemCount();
    bool hasSourceItem(std::string_view path);
    /// How many have been removed in the life of the store, as far as it is committed.
    std::size_t removedSourceItems();
    /// Whether one lies below the folder, that is, begins with its path and a "/".
    bool hasSourceItemBelow(std::string_view folder);
    void insertSourceItem(std::string path, bool treatAsFolder, std::uint32_t look = 0);
    void deleteSourceItem(std::string_view path);
    void setSourceItemRead(std::string_view path, bool readInRoot, bool readInSubfolders);
    void insertProcessingError(ProcessingError error);
    std::vector<ProcessingError> processingErrors();
    std::size_t deleteProcessingErrors(std::size_t limit);

    // --- Changes ---
    [[nodiscard]] bool hasChanges() const;
    /// Makes all staged changes part of the store. Throws StoreError when what they change cannot be read;
    /// everything is still staged then.
    void commit();
    /// Commits what needs no reading: counters, source items, failures. What is staged in rows is dropped.
    void commitWithoutRows();
    /// Drops the values of all unchanged rows; they are read anew when asked for.
    void refault();
    /// Commits and refaults where holding what is staged would take more than that: to be called between two
    /// rows of a pass. Whether it did.
    bool commitIfMuchIsStaged();
    /// Drops staged changes and values. Cursors go on, since batches of a pass are cut by resets.
    void reset();
    /// Takes over what another context has committed. Called under `mutex()`, on the committing thread.
    void merge(const StoreChanges& changes);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace tavrin
