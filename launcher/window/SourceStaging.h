#pragma once

#include "platform/OpenFolder.h"

#include <memory>
#include <string>
#include <vector>

namespace launcher {

/// Second names for the sources, for a session that deletes what it is given: links in a folder of
/// this process's own, hard ones where they can be made, else symbolic ones. They carry the
/// sources' file names, apart from what one argument for them all cannot carry. Gone with this;
/// what a killed process left in the same places is cleared away.
class SourceStaging {
public:
    /// Paths are absolute and UTF-8. The folder is made beside the first source, or else in the
    /// destination's folder or the one for temporary files: where other users cannot replace it.
    SourceStaging(const std::vector<std::string>& sources, const std::string& destinationFolder);
    ~SourceStaging() { clear(); }
    SourceStaging(const SourceStaging&) = delete;
    SourceStaging& operator=(const SourceStaging&) = delete;

    /// The second names in the order of the sources; empty when one could not be made.
    const std::vector<std::string>& paths() const { return mPaths; }
    /// True when none of them is left: a session deletes them when its engine reports the end.
    bool areGone() const;
    /// Removes them and their folder. May be called again.
    void clear();

private:
    bool stageIn(const std::string& parent, const std::vector<std::string>& sources);
    bool addLink(const std::string& source);

    std::unique_ptr<tarn::platform::OpenFolder> mFolder;
    std::unique_ptr<tarn::platform::OpenFolder> mNames; ///< in mFolder: a folder for each source
    std::vector<std::string> mPaths;
};

} // namespace launcher
