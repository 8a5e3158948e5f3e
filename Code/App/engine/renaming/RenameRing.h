#pragma once

#include "engine/renaming/RenameRun.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavrin {

/// Siblings each of which wants the name of the next, the last one that of the first; two of them are a pair.
/// Their names are exchanged two by two, or, where the file system can't, one of them stands aside under a
/// stand-in name while the others follow each other. Either all get their names or, as far as the disk lets
/// us, none.
class RenameRing {
  public:
    /// At least two, each before the one whose name it wants.
    RenameRing(RenameRun& currentRun, const std::vector<RowId>& siblings);

    /// Asks, renames, reports and marks the members; a ring at which the user stops stays unmarked.
    void resolve();

  private:
    struct Member {
        RowId id;
        std::string name;   ///< before
        std::string wanted; ///< empty when no file can bear it
        std::string lies;   ///< the name that it has now
        bool root;
    };
    /// A call that has worked: the member's move, or its exchange with another one.
    struct Step {
        std::size_t member;
        std::size_t other;
        std::string from;
        std::string to;
    };
    static constexpr std::size_t nobody = static_cast<std::size_t>(-1);

    [[nodiscard]] bool isPair() const { return members.size() == 2; }
    [[nodiscard]] std::size_t next(std::size_t index) const { return (index + 1) % members.size(); }
    UserQuestions::Decision ask();
    void setOutcomes(RunOutcome outcome);
    void rename();
    bool allCanTakePart();
    /// Where case counts, a name that was found taken apart from case is free: then all follow the one that
    /// wants it. False when there is none, or a call failed.
    bool followFreeName();
    bool exchangeAll();
    bool standAside();
    bool putCaseRight();
    /// Takes all steps back, the last one first.
    void walkBack();
    int move(std::size_t member, const std::string& to);
    int exchange(std::size_t member, std::size_t other);
    bool note(int error, std::size_t member, std::string_view to);

    void account();
    void accountSourceItems();
    void report(const Member& member);
    [[nodiscard]] std::string path(const std::string& name) const;

    RenameRun& run;
    std::vector<Member> members; ///< all that is to be known of the rows, so that none is read on the way
    std::string folder;
    RunFolders::Place* place = nullptr;
    std::string standIn;
    std::vector<Step> steps;
    std::string failure; ///< why it could not be done
};

} // namespace tavrin
