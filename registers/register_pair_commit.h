// Saving the White and the Black file of a register as one: a reader sees the old pair or the
// new pair, never one of each, even when the process is killed in the middle.
//
// Both files, and the descriptor beside them when the save has one (the White file's name +
// ".ini"), are written in full under their names + ".saving". Then the commit file (the White
// file's name + ".commit", saying whether the pair has a Black file) is created in one rename,
// and the ".saving" files are renamed over the old ones, Black first, the descriptor last; the
// commit file goes after them.
// A kill before the commit file exists leaves the old pair and some ".saving" files, which are
// removed; a kill after it leaves everything needed to finish the renames. Whoever saves or loads
// the register next does either (RecoverInterruptedSave).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "settings/file_lock.h"

namespace moremate {

std::filesystem::path SavingPath(const std::filesystem::path& file);
std::filesystem::path CommitFilePath(const std::filesystem::path& whiteFile);
// "AutoSave.tmpReg" -> "AutoSave.tmpReg.ini".
std::filesystem::path DescriptorPath(const std::filesystem::path& whiteFile);

// With both files complete under their ".saving" names (the Black one only `bWithBlack`, the
// descriptor when there is one), puts them in place; without a Black file in the new pair, an old Black file
// is removed. Throws ChessException when a file cannot be renamed; the commit file then stays for the next
// try.
void CommitRegisterPair(const std::filesystem::path& whiteFile, bool bWithBlack);

// The lock of the register saves in a folder: a save holds it from start to end, and the system
// drops it when the process dies. Leftovers are cleared only under it, so that the files of a save
// under way in another process or thread are never taken for those of a killed one.
class CRegisterSaveLock {
  public:
    // The lock of the folder of `file`: waited for when `bWait`, else tried once.
    CRegisterSaveLock(const std::filesystem::path& file, bool bWait);

    bool Held() const { return m_lock.Held(); }

  private:
    CFileLock m_lock;
};

// Finishes a save that was killed after its commit, or removes the ".saving" files of one killed
// before it; does nothing without the lock. Returns what it did for the user ("" when nothing).
// Throws ChessException when it cannot.
std::string RecoverInterruptedSave(const std::filesystem::path& whiteFile, const CRegisterSaveLock& lock);

// RecoverInterruptedSave for every register in `folder` that a killed save left files of, when no
// save is under way there; one line per register, in the order of their names.
std::vector<std::string> RecoverInterruptedSaves(const std::filesystem::path& folder);

// Removes the ".saving" files of a save that failed.
void RemoveSavingFiles(const std::filesystem::path& whiteFile);

}  // namespace moremate
