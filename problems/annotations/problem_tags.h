// Tags of a problem: free labels (award places, themes) kept in their order, each once. They are
// stored as the lines "//#" tag after "//#TAGS".
#pragma once

#include <string>
#include <vector>

#include "problems/format/problem_entry.h"
#include "problems/format/user_questions.h"

namespace moremate {

// Prompts of the interface's tag commands, for the interface to show.
inline constexpr const char* kAddTagPrompt = "Select or enter tag/label";
inline constexpr const char* kRemoveTagPrompt = "Select tag/label to remove";

const std::vector<std::string>& Tags(const ProblemEntry& entry);
bool HasTag(const ProblemEntry& entry, const std::string& tag);
// Appends the tag; false when the problem has it already (or it is empty).
bool AddTag(ProblemEntry& entry, const std::string& tag);
// False when the problem does not have the tag.
bool RemoveTag(ProblemEntry& entry, const std::string& tag);
// Every tag used in the collection, in order of first use: the choice offered by the commands.
std::vector<std::string> CollectionTags(const std::vector<ProblemEntry>& collection);

// The add command: a tag that no problem of the collection uses yet is created only after asking.
bool AddTagAsking(ProblemEntry& entry, const std::string& tag, const std::vector<ProblemEntry>& collection,
                  const TUserQuestions& questions);
// The remove command: asks first; a problem without tags is told so.
bool RemoveTagAsking(ProblemEntry& entry, const std::string& tag, const TUserQuestions& questions);

}  // namespace moremate
