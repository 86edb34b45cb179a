// Tablebase answers: the service's JSON body, and the cache's answer file whose first line is
// the FEN it answers.
#include "core/chess_exception.h"
#include "fuzz_support.h"
#include "tablebase/answer_file.h"
#include "tablebase/answer_reader.h"

using namespace moremate;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = fuzz::Text(data, size);
    try {
        ReadTablebaseAnswer(text);
    } catch (const ChessException&) {
    }
    try {
        ReadAnswerText(text, text.substr(0, text.find('\n')));
    } catch (const ChessException&) {
    }
    return 0;
}
