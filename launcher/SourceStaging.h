#pragma once

#include <string>
#include <variant>
#include <vector>

namespace launcher {

/// Second names for the sources, for a session that deletes what it is given: hard links beside
/// each source, or, where links can not be made, copies in the destination's folder. All of them
/// and their folders are gone when this ends; what a killed process left behind in the same
/// folders is cleared away by the next.
class SourceStaging {
public:
    /// Paths are absolute and UTF-8. `destinationFolder` can be written.
    SourceStaging(const std::vector<std::string>& sources, const std::string& destinationFolder);
    ~SourceStaging() { clear(); }
    SourceStaging(const SourceStaging&) = delete;
    SourceStaging& operator=(const SourceStaging&) = delete;

    /// The second names in the order of the sources; empty when one could not be made.
    const std::vector<std::string>& paths() const { return mPaths; }
    /// Removes the folders. May be called again.
    void clear();

private:
    bool stage(const std::string& source, const std::string& destinationFolder);
    std::string makeFolderIn(const std::string& parent);

    std::vector<std::string> mFolders;
    std::vector<std::string> mPaths;
};

} // namespace launcher
