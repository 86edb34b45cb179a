// FEN and moves: the first line is a FEN, each word of the rest a move played on the position
// reached, in the forms the problem files and the command line accept.
#include <sstream>

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/movegen.h"
#include "core/notation.h"
#include "core/validation.h"
#include "fuzz_support.h"

using namespace moremate;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = fuzz::Text(data, size);
    const size_t end = text.find('\n');
    TChessboard board;
    try {
        if (!ReadFen(text.substr(0, end), board)) return 0;
        WriteFen(board);
    } catch (const ChessException&) {
        return 0;
    }
    std::istringstream moves(end == std::string::npos ? "" : text.substr(end + 1));
    std::string word;
    bool white = true;
    while (moves >> word) {
        try {
            ParseFullDescription(word, white);
            TChessboard child;
            MakeMove(board, word, child);
            board = child;
            white = !white;
        } catch (const ChessException&) {
        }
    }
    return 0;
}
