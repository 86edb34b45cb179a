// Scripts of regression tests. File names must stay in the target's folder, where a small
// collection waits to be opened and tested ("a.cp"): the input may not name other folders.
#include "problems/regression/script.h"
#include "core/chess_exception.h"
#include "fuzz_support.h"

using namespace moremate;

namespace {

constexpr char kCollection[] =
    "UTF-8\n\n1 #1\n{\n\tFEN: 7k/5Q2/6K1/8/8/8/8/8 w - - 0 1\n\tAnswer: f7-g7\n}\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = fuzz::Text(data, size);
    if (text.find('/') != std::string::npos || text.find("..") != std::string::npos) return 0;
    static const bool written = [] {
        fuzz::WriteFile("a.cp", reinterpret_cast<const uint8_t*>(kCollection), sizeof kCollection - 1);
        return true;
    }();
    (void)written;
    TOptions options;
    options.m_nMaxMemRatioForTempReg = 1;
    TSolveSettings solve;
    solve.timeLimitSeconds = 1;
    TRegressionTestSettings test;
    test.logFolder = fuzz::Folder();
    TScriptEnvironment environment{.options = options,
                                   .solve = solve,
                                   .testSettings = test,
                                   .baseFolder = fuzz::Folder(),
                                   .output = nullptr};
    try {
        RunScriptText(text, environment);
    } catch (const ChessException&) {
    }
    return 0;
}
