#pragma once

#include "RenameBench.h"
#include "common/FailingFileSystem.h"

namespace tavrin::test {

/// What file systems refuse: nothing; to exchange names; also to rename without replacing; also links. And
/// one that ignores case.
struct Volume {
    const char* title;
    std::vector<FileCall> refused;
    bool ignoresCase = false;
    void setUp(FailingFileSystem& disk) const {
        disk.ignoresCase = ignoresCase;
        for (const FileCall call : refused)
            disk.failKind(call, EOPNOTSUPP);
    }
};
extern const std::vector<Volume> volumes;

/// A random tree of files and folders in a folder "box", and random names that its items are to have: names
/// of siblings in any permutation, new names, changes of case. Final names are distinct in each folder apart
/// from case. Each folder holds a file "mark" that stays, so that the folder is known again.
class RandomPlan {
  public:
    /// Present names are distinct apart from case too where the volume ignores it.
    explicit RandomPlan(unsigned seed, bool ignoresCase = false);

    /// Makes the tree on disk, reads it and gives the rows their final names.
    void setUp(RenameBench& bench) const;

    [[nodiscard]] const RenameBench::Tree& before() const { return filesBefore; }
    [[nodiscard]] const RenameBench::Tree& after() const { return filesAfter; }

    /// The laws of a run in which anything may have failed: each file is there; an item has been reported
    /// exactly if it does not bear the name that it was to have; nothing lies under a name that no message
    /// gives; the numbers are those of the items changed and not changed.
    void expectNothingLost(RenameBench& bench) const;

  private:
    void fill(const std::string& before, const std::string& after, int depth);
    std::vector<std::string> finalNames(const std::vector<std::string>& names);
    std::string otherCase(std::string name);
    void addItem(const std::string& before, const std::string& finalName, const std::string& folderAfter,
                 bool isFolder, int depth);
    [[nodiscard]] static bool isReported(const RenameBench& bench, const std::string& path);
    unsigned upTo(unsigned most) { return std::uniform_int_distribution<unsigned>(0, most)(random); }

    std::mt19937 random;
    bool caseIsIgnored;
    std::vector<std::string> made;
    std::map<std::string, std::string> plan; ///< path before to final name
    RenameBench::Tree filesBefore;
    RenameBench::Tree filesAfter;
};

/// Works with a few plans on each kind of volume from the first, the second ... call on, until one is not
/// reached any more.
void atEachCall(const std::function<bool(const RandomPlan&, const Volume&, std::size_t call)>& reaches);

} // namespace tavrin::test
