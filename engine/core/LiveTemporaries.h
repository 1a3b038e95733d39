#pragma once

#include <mutex>
#include <set>
#include <string>

namespace zelcore {

/// The temporary files that running conversions write. A process that ends, by exit() or by the
/// return of main, removes them although the conversions' threads never come to an end.
class LiveTemporaries {
public:
    static LiveTemporaries& instance();

    /// False when the process is ending: then nothing new is to be created.
    bool add(const std::string& path);
    void remove(const std::string& path);
    /// For a name that turned out to belong to somebody else.
    void forget(const std::string& path);
    /// Renames a temporary into place; from then on it is none. An errno value, ECANCELED when the
    /// process is ending and the temporary is gone.
    int commit(const std::string& path, const std::string& destination);
    /// The process ends: removes them all, bounded, and refuses new ones.
    void removeAll();

private:
    std::mutex mMutex;
    std::set<std::string> mPaths;
    bool mIsEnding = false;
};

} // namespace zelcore
