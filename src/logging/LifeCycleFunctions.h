#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarn {

/// Which functions count as steps of the application's life cycle. Empty in this program.
class LifeCycleFunctions {
public:
    /// Every function of the file counts.
    void addFile(std::string file);
    void addFunction(const std::string& file, std::string function);
    bool contains(const std::string& file, std::string_view function) const;

private:
    std::vector<std::string> mFiles;
    std::unordered_map<std::string, std::vector<std::string>> mFunctions; ///< by file
};

} // namespace tarn
