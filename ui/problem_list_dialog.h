// The list of problems to choose one from: each line the problem's number and description.
#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <vector>

#include "problems/format/problem_entry.h"

class QWidget;

namespace moremate::ui {

// Shows the problems `indexes` of `entries` (the one at `selected` chosen first, if among them)
// and returns the index chosen, or none when the dialog is cancelled.
std::optional<size_t> ChooseProblem(QWidget* parent, const QString& title,
                                    const std::vector<ProblemEntry>& entries,
                                    const std::vector<size_t>& indexes, size_t selected);

}  // namespace moremate::ui
