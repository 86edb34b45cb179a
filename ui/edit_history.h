// CEditHistory: the undo and redo lists of the edits of one problem. Each edit records the
// problem as it was before; undo hands back that state and keeps the present one for redo.
#pragma once

#include <vector>

#include "problems/format/problem_entry.h"

namespace moremate::ui {

class CEditHistory {
  public:
    // An edit is about to change `before`: it can be undone; the redo list is dropped.
    void Record(const ProblemEntry& before) {
        m_vUndo.push_back(before);
        m_vRedo.clear();
    }
    bool CanUndo() const { return !m_vUndo.empty(); }
    bool CanRedo() const { return !m_vRedo.empty(); }
    // The state before the last edit; `present` goes to the redo list.
    ProblemEntry Undo(const ProblemEntry& present) { return Swap(m_vUndo, m_vRedo, present); }
    ProblemEntry Redo(const ProblemEntry& present) { return Swap(m_vRedo, m_vUndo, present); }
    void Clear() {
        m_vUndo.clear();
        m_vRedo.clear();
    }

  private:
    static ProblemEntry Swap(std::vector<ProblemEntry>& from, std::vector<ProblemEntry>& to,
                             const ProblemEntry& present) {
        ProblemEntry state = from.back();
        from.pop_back();
        to.push_back(present);
        return state;
    }

    std::vector<ProblemEntry> m_vUndo, m_vRedo;
};

}  // namespace moremate::ui
