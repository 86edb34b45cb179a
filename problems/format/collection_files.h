// Collections on disk: saving with a backup of the previous file, scratch copies of single
// problems, and new collections made from a template.
#pragma once

#include <filesystem>
#include <vector>

#include "problem_entry.h"
#include "user_questions.h"

namespace moremate {

// The text of a new collection: one problem, #2 with the two kings.
extern const char* const kNewCollectionText;

// Writes `text` to `file` through a temporary file. An existing file (not a folder) is kept as
// the backup, the same name with ".BAK" appended, replacing an older backup. At every moment the
// file holds the old text or the new one. Throws ChessException "Error opening file: " or "Error
// writing file: " with the file name and the reason when it cannot be written; the old file and
// its backup then stay, and no temporary file is left.
void WriteFileWithBackup(const std::filesystem::path& file, const std::string& text);

// Saves the collection in its canonical text.
void WriteCollectionFile(const std::filesystem::path& file, const std::vector<ProblemEntry>& entries);

// Saves one problem as a collection into the folder "tmp" under the current directory (created
// when missing), named by the lowest number not yet taken there, with the extension ".cp".
// Returns the file's path.
std::filesystem::path WriteScratchCopy(const ProblemEntry& entry);

// Creates the collection `file` from the template. When the file exists the user is asked
// whether to replace it; returns false when the answer is no.
bool CreateNewCollection(const std::filesystem::path& file, const TUserQuestions& questions);

}  // namespace moremate
