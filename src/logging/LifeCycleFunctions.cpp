#include "logging/LifeCycleFunctions.h"

#include <algorithm>
#include <utility>

namespace tarn {

void LifeCycleFunctions::addFile(std::string file) {
    mFiles.push_back(std::move(file));
}

void LifeCycleFunctions::addFunction(const std::string& file, std::string function) {
    mFunctions[file].push_back(std::move(function));
}

bool LifeCycleFunctions::contains(const std::string& file, std::string_view function) const {
    if (!file.empty() && std::ranges::find(mFiles, file) != mFiles.end()) {
        return true;
    }
    const auto entry = mFunctions.find(file);
    return entry != mFunctions.end() &&
           std::ranges::find(entry->second, function) != entry->second.end();
}

} // namespace tarn
