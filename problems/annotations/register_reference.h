// The reference of a problem to a saved temporary register: the number of its register file,
// stored on the line "//@tmpreg=" number. The file is "<number>.tmpReg" in the saved registers'
// folder, read into the run's register before the problem is solved.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "engine/passes/run_register.h"
#include "problems/format/problem_entry.h"
#include "registers/register_file.h"
#include "settings/options.h"

namespace moremate {

// The register number; nothing when the problem has no reference or its text is no number.
std::optional<uint32_t> TmpRegNumber(const ProblemEntry& entry);
void SetTmpRegNumber(ProblemEntry& entry, uint32_t number);

// "<program folder>/SavedTmpRegisterData/<number>.tmpReg".
std::filesystem::path ReferencedRegisterFile(uint32_t number);
// The smallest number from 1 on whose referenced file does not exist yet: the file a register is
// saved to when it is pinned to a problem.
uint32_t NextFreeRegisterNumber();
// The file a problem's register is saved to when it is not pinned: named after the collection
// and the problem, "<program folder>/SavedTmpRegisterData/<collection stem>-<number>.tmpReg".
std::filesystem::path ProblemRegisterFile(const std::filesystem::path& collection, unsigned problem);

struct TRunRegisterLoad {
    std::unique_ptr<CRunRegister> runRegister;  // what was read, also when read with errors
    TRegisterLoadResult result;
};
// Reads a register file (and its Black-to-move companion) into a fresh run register sized from
// the options, with `buckets` buckets (else the register's own count). Does not throw: a file
// that cannot be read leaves `result.bRead` false.
TRunRegisterLoad LoadRunRegisterFile(const std::filesystem::path& file, const TOptions& options,
                                     std::optional<size_t> buckets = std::nullopt);

// When the entry has a reference, reads its file into a fresh register that replaces
// `runRegister` and returns the load's report ("File has been read: ...", "Error reading file
// ..."); a file that cannot be read leaves `runRegister` as it was.
std::optional<std::string> LoadReferencedRegister(const ProblemEntry& entry, const TOptions& options,
                                                  std::unique_ptr<CRunRegister>& runRegister);

}  // namespace moremate
