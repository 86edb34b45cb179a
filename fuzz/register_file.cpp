// Register files in every form (plain, LZ4, LZ4e and their containers): loaded as the program
// loads them from disk.
#include "registers/register_file.h"
#include "fuzz_support.h"
#include "registers/aggregated_register.h"

using namespace moremate;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::filesystem::path file = fuzz::WriteFile("input.tmpReg", data, size);
    TAggregatedTemporaryChessboardRegister reg(10'000, 16);
    TRegisterLoadOptions options;
    options.workingFolder = fuzz::Folder();
    LoadRegisterFile(file, reg, 16, options);
    return 0;
}
