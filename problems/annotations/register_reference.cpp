#include "register_reference.h"

#include <string>

#include "problems/format/problem_lexer.h"

namespace moremate {

std::optional<uint32_t> TmpRegNumber(const ProblemEntry& entry) {
    const std::optional<std::string>& text = entry.m_annotations.sTmpReg;
    if (!text) return std::nullopt;
    const size_t end = text->find_last_not_of(" \t");
    return ToNumber(WithoutLeadingBlanks(text->substr(0, end == std::string::npos ? 0 : end + 1)));
}

void SetTmpRegNumber(ProblemEntry& entry, uint32_t number) {
    entry.m_annotations.sTmpReg = std::to_string(number);
}

std::filesystem::path ReferencedRegisterFile(uint32_t number) {
    return SavedRegisterFilePath(std::to_string(number));
}

uint32_t NextFreeRegisterNumber() {
    uint32_t number = 1;
    while (std::filesystem::exists(ReferencedRegisterFile(number))) ++number;
    return number;
}

std::filesystem::path ProblemRegisterFile(const std::filesystem::path& collection, unsigned problem) {
    return SavedRegisterFilePath(collection.stem().string() + "-" + std::to_string(problem));
}

TRunRegisterLoad LoadRunRegisterFile(const std::filesystem::path& file, const TOptions& options,
                                     std::optional<size_t> buckets) {
    TRunRegisterLoad load{std::make_unique<CRunRegister>(options), {}};
    TRegisterLoadOptions loading;
    loading.bLogToFile = options.m_bLogToFileTmpRegLoad;
    load.result = LoadRegisterFile(file, load.runRegister->WhiteToMove(), &load.runRegister->BlackToMove(),
                                   buckets.value_or(load.runRegister->WhiteToMove().BucketCount()), loading);
    return load;
}

std::optional<std::string> LoadReferencedRegister(const ProblemEntry& entry, const TOptions& options,
                                                  std::unique_ptr<CRunRegister>& runRegister) {
    const std::optional<uint32_t> number = TmpRegNumber(entry);
    if (!number) return std::nullopt;
    const std::filesystem::path file = ReferencedRegisterFile(*number);
    TRunRegisterLoad load = LoadRunRegisterFile(file, options);
    if (load.result.bRead) runRegister = std::move(load.runRegister);
    // Loaded right before the run starts: clearing on start does not apply to it.
    return LoadReportText(load.result, file, options.m_nLanguageId, false);
}

}  // namespace moremate
