#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/TextPlacement.h"
#include "actions/folders/PathComponents.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 2> exceptions{{{0, "Use those there are"}, {1, "Leave the name"}}};

/// Puts the names of several folders of the path into the name, from the outermost to the one that holds the
/// item, joined by a separator.
class AddPathComponentsAction final : public BaseRenameAction {
  public:
    explicit AddPathComponentsAction(Place place) : placement(place) {
        if (isInserting()) {
            addParametersOfChain();
            placement.addParametersTo(*this);
            return;
        }
        // Of no effect, but kept for stored lists.
        addParameter(checkboxParameter("leadingSpace", "Not used", 0).unused());
        addParameter(checkboxParameter("trailingSpace", "Not used", 0).unused());
        addParametersOfChain();
        setDefault(place == Place::start ? "prefix" : "suffix", u"");
    }
    [[nodiscard]] bool hasLongParameterList() const override { return isInserting(); }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const std::string path = item().inputPath();
        placement.putIfAny(chainOf(path), fragment, result);
    }

  private:
    [[nodiscard]] bool isInserting() const {
        return placement.where() != Place::start && placement.where() != Place::end;
    }
    void addParametersOfChain();
    /// The stretch of the path with the folders that take part; absent when there are no folders, or fewer
    /// than asked for and the parameters want all or none.
    [[nodiscard]] std::optional<std::string_view> foldersOf(std::string_view path) const;
    void appendFolder(std::string_view name, bool isParent);
    /// The text for the item at the path, valid until the next call.
    [[nodiscard]] std::optional<std::u16string_view> chainOf(std::string_view path);

    std::int32_t levels = 0;
    std::int32_t exceptionMode = 0;
    std::u16string pathSeparator;
    std::u16string prefix;
    std::u16string suffix;
    std::u16string folder; ///< one name in hand
    std::u16string chain;
    TextPlacement placement;
};

void AddPathComponentsAction::addParametersOfChain() {
    addParameter(numberParameter("levels", "Folders", 0).between(0, 98).shownMore(1).option("levels"),
                 levels);
    addParameter(choiceParameter("exceptionMode", "If there are fewer", exceptions, 0).mark("exact"),
                 exceptionMode);
    addParameter(textParameter("prefix", "Text in front", u"_").option("prefix"), prefix);
    addParameter(textParameter("pathSeparator", "Between", u"_").option("between"), pathSeparator);
    addParameter(textParameter("suffix", "Text behind", u"_").option("suffix"), suffix);
}

std::optional<std::string_view> AddPathComponentsAction::foldersOf(std::string_view path) const {
    const std::int64_t asked = std::int64_t{levels} + 1;
    if (asked == 0)
        return std::nullopt;
    // A negative number is never more than there are, and the parent folder is always taken.
    const std::int64_t wanted = std::max<std::int64_t>(asked, 1);
    PathComponents components(path);
    static_cast<void>(components.previous()); // the item
    std::int64_t taken = 0;
    std::string_view outermost;
    std::string_view parent;
    while (taken < wanted) {
        const auto component = components.previous();
        if (!component || components.isAtFirst())
            break; // the root is no folder of the chain
        outermost = *component;
        if (taken++ == 0)
            parent = *component;
    }
    if (taken == 0 || (taken < asked && exceptionMode == 1))
        return std::nullopt;
    return std::string_view(outermost.data(),
                            static_cast<std::size_t>(parent.data() + parent.size() - outermost.data()));
}

void AddPathComponentsAction::appendFolder(std::string_view name, bool isParent) {
    text::fromBytes(name, folder);
    // The members that insert take the parent's name for a format, in which "%%" stands for "%".
    if (isParent && isInserting())
        for (auto at = folder.find(u"%%"); at != folder.npos; at = folder.find(u"%%", at + 1))
            folder.erase(at, 1);
    chain += folder;
}

std::optional<std::u16string_view> AddPathComponentsAction::chainOf(std::string_view path) {
    auto folders = foldersOf(path);
    if (!folders)
        return std::nullopt;
    chain = prefix;
    for (;;) {
        const std::size_t end = std::min(folders->find('/'), folders->size());
        const std::size_t next = std::min(folders->find_first_not_of('/', end), folders->size());
        const bool isParent = next == folders->size();
        appendFolder(folders->substr(0, end), isParent);
        if (isParent)
            break;
        chain += pathSeparator;
        folders->remove_prefix(next);
    }
    chain += suffix;
    text::replaceUnit(chain, u':', u'/');
    return chain;
}

constexpr ExampleFile photos{"/Users/me/Photos", "", "", "", u""};
constexpr ExampleFile taxes{"/home/me/Taxes", "", "", "", u""};

} // namespace

std::vector<ActionEntry> pathComponentsActions() {
    constexpr auto category = ActionCategory::folderPath;
    return {
        {"Add path components to front",
         "Add folder path to start",
         {"path", Place::start},
         category,
         newAction<AddPathComponentsAction, Place::start>,
         {{{{"levels", 1}}, u"a.jpg", u"me_Photos_a.jpg", photos}}},
        {"Add path components to end",
         "Add folder path to end",
         {"path", Place::end},
         category,
         newAction<AddPathComponentsAction, Place::end>,
         {{{{"levels", 1}, {"pathSeparator", u"-"}}, u"a.jpg", u"a_me-Photos.jpg", photos}}},
        {"Insert path components at position",
         "Insert folder path at position",
         {"path", Place::position},
         category,
         newAction<AddPathComponentsAction, Place::position>,
         {{{{"position", 4}, {"levels", 1}}, u"scan7.pdf", u"scan_me_Taxes_7.pdf", taxes}}},
        {"Insert path components in front of existing text",
         "Insert folder path before text",
         {"path", Place::beforeText},
         category,
         newAction<AddPathComponentsAction, Place::beforeText>,
         {{{{"searchTerm", u"7"}}, u"scan7.pdf", u"scan_Taxes_7.pdf", taxes}}},
        {"Insert path components after existing text",
         "Insert folder path after text",
         {"path", Place::afterText},
         category,
         newAction<AddPathComponentsAction, Place::afterText>,
         {{{{"searchTerm", u"Scan"}}, u"scan7.pdf", u"scan_Taxes_7.pdf", taxes}}},
    };
}

} // namespace tavrin
