// The texts describing a register's contents: the statistics block and the interface's summary.
#pragma once

#include <string>

#include "aggregated_register.h"

namespace moremate {

// "Buckets count = ...", one item per line, in blocks separated by an empty line: the table and
// the element counts, the mate / no-mate entries, the doubtful / not doubtful entries.
std::string RegisterStatistics(const TAggregatedTemporaryChessboardRegister& reg);

// "Total number of positions: ..." lines and the range of the stipulations ("#n") whose
// results are stored, in moves.
std::string RegisterSummary(const TAggregatedTemporaryChessboardRegister& reg);

}  // namespace moremate
