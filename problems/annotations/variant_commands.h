// The interface's commands on the variants of a problem: store, rename and delete. Questions and
// refusals go to the user through the reporter; without one every question is answered yes.
#pragma once

#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "problems/format/user_questions.h"

namespace moremate {

// The prompt of the interface's variant-name choice, for the interface to show.
inline constexpr const char* kVariantNamePrompt = "Select/enter name";

// Stores `moves` (legal from the initial position) under `name`; asks before overwriting a
// variant of that name. False when nothing was stored.
bool StoreVariant(ProblemEntry& entry, const std::string& name, const std::vector<TMove>& moves,
                  const TUserQuestions& questions);
// Renames a variant; refuses when a variant of the new name exists. False when nothing changed.
bool RenameVariant(ProblemEntry& entry, const std::string& oldName, const std::string& newName,
                   const TUserQuestions& questions);
// Deletes a variant after asking. False when nothing was deleted.
bool DeleteVariant(ProblemEntry& entry, const std::string& name, const TUserQuestions& questions);

}  // namespace moremate
