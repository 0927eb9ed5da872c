// What a run prints and writes. Only ratios: times of one machine say nothing on another.
#pragma once

#include "compare.h"

#include <string>
#include <vector>

namespace vxbench {

// The table and, below it, the counts of works that miss a goal.
void PrintTable(const std::vector<Outcome>& outcomes);

// An array with an object for each work. False where the file cannot be written.
[[nodiscard]] bool WriteJson(const std::vector<Outcome>& outcomes, const std::string& path);

} // namespace vxbench
