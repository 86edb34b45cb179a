// Saving the White and the Black file of a register as one: a reader sees the old pair or the
// new pair, never one of each, even when the process is killed in the middle.
//
// Both files are written in full under their names + ".saving". Then the commit file (the White
// file's name + ".commit", saying whether the pair has a Black file) is created in one rename,
// and the ".saving" files are renamed over the old ones, Black first; the commit file goes last.
// A kill before the commit file exists leaves the old pair and some ".saving" files, which are
// removed; a kill after it leaves everything needed to finish the renames. Whoever saves or loads
// the register next does either (RecoverInterruptedSave).
#pragma once

#include <filesystem>
#include <string>

namespace moremate {

std::filesystem::path SavingPath(const std::filesystem::path& file);
std::filesystem::path CommitFilePath(const std::filesystem::path& whiteFile);

// With both files complete under their ".saving" names (the Black one only `bWithBlack`), puts
// them in place; without a Black file in the new pair, an old Black file is removed. Throws
// ChessException when a file cannot be renamed; the commit file then stays for the next try.
void CommitRegisterPair(const std::filesystem::path& whiteFile, bool bWithBlack);

// Finishes a save that was killed after its commit, or removes the ".saving" files of one killed
// before it. Returns what it did for the user ("" when nothing was left). Throws ChessException
// when it cannot.
std::string RecoverInterruptedSave(const std::filesystem::path& whiteFile);

// Removes the ".saving" files of a save that failed.
void RemoveSavingFiles(const std::filesystem::path& whiteFile);

}  // namespace moremate
