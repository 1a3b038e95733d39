#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace launcher {

/// One of many recordings, each of which becomes a file of its own. Paths are absolute.
struct BatchItem {
    std::string source;
    std::string destination;
    std::string objection; ///< a sentence that says why it cannot be begun; mostly empty
};

struct BatchPlan {
    std::vector<BatchItem> items; ///< in the order given, a folder's in the order of their names
    std::vector<std::string> leftOut; ///< in folders, because they are .mp4 already
};

/// Every source once. A folder stands for the recordings that lie directly in it and are not .mp4
/// already. No two of the new files have the same name in `folder`, or in their sources' folder
/// where that is empty: the later ones get a number.
BatchPlan planBatch(const std::vector<std::string>& sources, const std::string& folder);

} // namespace launcher
