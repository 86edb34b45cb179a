// The canonical text of records and collections, which the record reader reads back unchanged.
#pragma once

#include <string>
#include <vector>

#include "problem_entry.h"

namespace moremate {

// One record: a blank line, the header line, the annotation lines, then "{" ... "}".
std::string WriteRecord(const ProblemEntry& entry);

// "UTF-8", a blank line and every record in list order; empty slots are left out.
std::string WriteCollectionText(const std::vector<ProblemEntry>& entries);

}  // namespace moremate
