// Reads the tablebase service's JSON answer by text searches, without a JSON parser: each value is
// found by the first occurrence of its key, so that keys added to the answer later do no harm.
#pragma once

#include <string_view>

#include "tablebase_answer.h"

namespace moremate {

// An answer that cannot be read (no "wdl" nor "category", a bad move text, a move without "dtm")
// comes back with a move count of -1.
TTablebaseAnswer ReadTablebaseAnswer(std::string_view body);

}  // namespace moremate
