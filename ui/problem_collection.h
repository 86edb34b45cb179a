// TProblemCollection: the collection the window works on: its records, the file they came from,
// the current problem, the problems viewed before it, and whether anything changed since the
// last save. It knows nothing of windows; the window asks it and shows what it says.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "problems/format/user_questions.h"

namespace moremate::ui {

class TProblemCollection {
  public:
    // Replaces the records by those of `file` and goes to the first. Throws ChessException; on a
    // fault in the middle of the file the records before it are kept (and the exception thrown).
    void Open(const std::filesystem::path& file, const TUserQuestions& questions);
    // Adds the records of `file` after the present ones (a number already present replaces its record).
    void Append(const std::filesystem::path& file, const TUserQuestions& questions);
    // Writes the records to the collection's own file (the previous one kept as ".BAK").
    void Save();
    // Writes them to `file`, which becomes the collection's file.
    void SaveAs(const std::filesystem::path& file);

    const std::filesystem::path& File() const { return m_pathFile; }
    bool Modified() const { return m_bModified; }
    size_t Size() const { return m_vEntries.size(); }
    size_t CurrentIndex() const { return m_nCurrent; }
    const ProblemEntry& Current() const { return m_vEntries.at(m_nCurrent); }
    const ProblemEntry& At(size_t index) const { return m_vEntries.at(index); }
    const std::vector<ProblemEntry>& Entries() const { return m_vEntries; }
    // Replaces a record; the collection counts as modified when it differs.
    void Set(size_t index, const ProblemEntry& entry);
    void SetCurrent(const ProblemEntry& entry) { Set(m_nCurrent, entry); }

    // Navigation; each returns false when it goes nowhere. Every move to another problem is
    // remembered for GoBack, which GoForward undoes.
    bool GoTo(size_t index);
    bool Next() { return GoTo(m_nCurrent + 1); }
    bool Previous() { return m_nCurrent > 0 && GoTo(m_nCurrent - 1); }
    bool First() { return GoTo(0); }
    bool Last() { return !m_vEntries.empty() && GoTo(m_vEntries.size() - 1); }
    bool GoToNumber(uint32_t number);
    bool GoBack();
    bool GoForward();
    // Goes to the next problem after the current one (or the one before it) that `query`
    // matches (ProblemMatches); false when none does.
    bool Find(const std::string& query, bool forward);

    // Adds a problem after the last one, numbered one above the highest number, with the two
    // kings of a new collection, and goes to it.
    void AddProblem();
    // Adds `entries` after the last problem, renumbered upwards from one above the highest
    // number, and goes to the first of them.
    void AddProblems(std::vector<ProblemEntry> entries);
    // Removes the problems that `others` also holds (SameProblem); the current problem is the
    // first one left at or after it. The history of viewed problems is dropped. Never empties
    // the collection: the number of problems removed is returned (all but one at most).
    size_t RemovePresentIn(const std::vector<ProblemEntry>& others);

  private:
    void Moved(size_t from);
    uint32_t HighestNumber() const;

    std::vector<ProblemEntry> m_vEntries;
    std::filesystem::path m_pathFile;
    size_t m_nCurrent = 0;
    bool m_bModified = false;
    bool Step(std::vector<size_t>& from, std::vector<size_t>& to);
    std::vector<size_t> m_vBack, m_vForward;  // problems viewed before and the ones GoBack left
};

}  // namespace moremate::ui
