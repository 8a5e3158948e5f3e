#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/TextPlacement.h"
#include "actions/folders/PathComponents.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

/// Puts the name of the folder which holds the item into the name.
class AddFolderNameAction final : public BaseRenameAction {
  public:
    explicit AddFolderNameAction(Place place) : placement(place) {
        addParameter(checkboxParameter("leadingSpace", "Space in front", 0).mark("space-before"),
                     paramLeadingSpace);
        addParameter(checkboxParameter("trailingSpace", "Space behind", 0).mark("space-after"),
                     paramTrailingSpace);
        placement.addParametersTo(*this);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        takeFolderOf(item().inputPath());
        addSpaces();
        // The members that insert put the blanks around it once more, on purpose: two in front, two behind.
        if (placement.where() != Place::start && placement.where() != Place::end)
            addSpaces();
        placement.put(folder, fragment, result);
    }

  private:
    /// The name of the folder, "/" in the root of the disk.
    void takeFolderOf(const std::string& path) {
        PathComponents components(path);
        const auto last = components.previous();
        const auto holder = last ? components.previous() : std::nullopt;
        text::fromBytes(holder.value_or(std::string_view()), folder);
        text::replaceUnit(folder, u':', u'/');
    }

    void addSpaces() {
        if (paramLeadingSpace == 1)
            folder.insert(folder.begin(), u' ');
        if (paramTrailingSpace == 1)
            folder += u' ';
    }

    std::int32_t paramLeadingSpace = 0;
    std::int32_t paramTrailingSpace = 0;
    std::u16string folder; ///< of the item in hand, with its blanks
    TextPlacement placement;
};

constexpr ExampleFile photos{"/Users/me/Photos", "", "", "", u""};
constexpr ExampleFile taxes{"/home/me/Taxes", "", "", "", u""};

} // namespace

std::vector<ActionEntry> folderNameActions() {
    constexpr auto category = ActionCategory::folderName;
    return {
        {"Add folder name to front",
         "Add folder name to start",
         {"folder", Place::start},
         category,
         newAction<AddFolderNameAction, Place::start>,
         {{{{"trailingSpace", 1}}, u"a.jpg", u"Photos a.jpg", photos}}},
        {"Add folder name to end",
         "Add folder name to end",
         {"folder", Place::end},
         category,
         newAction<AddFolderNameAction, Place::end>,
         {{{{"leadingSpace", 1}}, u"a.jpg", u"a Photos.jpg", photos}}},
        {"Insert folder name at position",
         "Insert folder name at position",
         {"folder", Place::position},
         category,
         newAction<AddFolderNameAction, Place::position>,
         {{{{"position", 5}}, u"scan-7.pdf", u"scan-Taxes7.pdf", taxes}}},
        {"Insert folder name in front of existing text",
         "Insert folder name before text",
         {"folder", Place::beforeText},
         category,
         newAction<AddFolderNameAction, Place::beforeText>,
         {{{{"searchTerm", u"-"}}, u"scan-7.pdf", u"scanTaxes-7.pdf", taxes}}},
        {"Insert folder name after existing text",
         "Insert folder name after text",
         {"folder", Place::afterText},
         category,
         newAction<AddFolderNameAction, Place::afterText>,
         {{{{"searchTerm", u"-"}}, u"scan-7.pdf", u"scan-Taxes7.pdf", taxes}}},
    };
}

} // namespace tavrin
