// The text of a "//@SortIndications: " line, in the interface's languages.
#include "problems/annotations/sort_indications.h"
#include "core/chess_exception.h"
#include "fuzz_support.h"

using namespace moremate;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string text = fuzz::Text(data + 1, size - 1);
    try {
        ParseSortIndications(text, data[0] % 3);
    } catch (const ChessException&) {
    }
    return 0;
}
