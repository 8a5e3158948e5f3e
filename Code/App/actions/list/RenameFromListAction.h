#pragma once

#include "actions/SortBasedAction.h"
#include "actions/list/RenameList.h"

#include <memory>
#include <string>

namespace tavrin {

/// Takes the new names from a text file of the user: either by the current name or path, or, where the file
/// has new names only, in the order of the run. Loading reads the file on the calling thread and tells in the
/// parameter `status` what came of it.
class RenameFromListAction final : public SortBasedAction {
  public:
    RenameFromListAction();

    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] std::string_view helpAnchor() const override { return "helpTopic32"; }

    /// As in the base, then loads the file of the parameters.
    void setParameterList(const PropertyDictionary& list) override;

    /// Loads a file and stores its path. The present list stays in use when the file has an error.
    void load(const std::u16string& path);
    /// Loads the present file anew, whether or not it has changed.
    void reload();
    void clear();
    /// The file and what is wrong with it.
    [[nodiscard]] std::string failure() const override;

  protected:
    void prepareParameters() override;
    void processName(std::u16string_view fragment, std::u16string& result) override;

  private:
    enum class Freshness { mayBeShared, fromFile };

    void load(std::u16string path, Freshness freshness);
    /// Makes the list that of the file, or sets `problem`.
    void read(const std::string& path, Freshness freshness);
    void readFromFile(const std::string& path);
    [[nodiscard]] std::string summary() const;
    [[nodiscard]] std::optional<std::u16string_view> listedName(const InputContext& input);

    std::string problem; ///< of the file that was to be loaded last; empty where it was
    std::shared_ptr<const RenameList> list = std::make_shared<RenameList>();
    std::u16string paramListFilePath;
    std::int32_t paramIgnoreCase = 1;
    bool ignoresCase = true;
    bool paramIsTabDelimitedList = false;
    ListField key;
};

} // namespace tavrin
