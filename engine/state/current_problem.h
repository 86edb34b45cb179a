// The problem and the position the solving run works on, kept in fixed buffers that a report
// written from a signal handler can copy without allocating or locking. A reader racing with a
// change may see a mix of the old and the new text; it never reads beyond the buffer.
#pragma once

#include <cstddef>
#include <string_view>

namespace moremate {

inline constexpr size_t kCurrentTextCapacity = 256;

void SetCurrentProblem(std::string_view name, int number);
void SetCurrentChessboard(std::string_view fen, int halfMoves);
void ClearCurrentProblem();  // clears the position too

// Copies "text,number" into `out` (at most `size` - 1 characters, zero-terminated) and returns the
// length; async-signal-safe.
size_t CopyCurrentProblem(char* out, size_t size);
size_t CopyCurrentChessboard(char* out, size_t size);

// Sets the current problem and position for as long as it lives, and clears them after.
class CCurrentProblemScope {
  public:
    CCurrentProblemScope(std::string_view name, int number, std::string_view fen, int halfMoves);
    ~CCurrentProblemScope();
    CCurrentProblemScope(const CCurrentProblemScope&) = delete;
    CCurrentProblemScope& operator=(const CCurrentProblemScope&) = delete;
};

}  // namespace moremate
