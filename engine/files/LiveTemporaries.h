#pragma once

#include "engine/platform/OsFile.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace zelcore {

/// The temporary files that running conversions write. A process that ends, by exit() or by the
/// return of main, removes them although the conversions' threads never come to an end. A file that
/// got such a name from somebody else is left alone.
class LiveTemporaries {
public:
    static LiveTemporaries& instance();

    /// Before the file is created. False when the process is ending: then nothing new is to be.
    bool add(const std::string& path);
    /// The file is there, and this is it.
    void identify(const std::string& path, const FileState& state);
    /// Forgets the name, and removes the file if it was identified.
    void remove(const std::string& path);
    /// Renames a temporary into place; from then on it is none. An errno value, ECANCELED when the
    /// process is ending and the temporary is gone, EEXIST when the destination must not be
    /// replaced and is there.
    int commit(const std::string& path, const std::string& destination, bool mayReplace);
    /// The process ends: removes them all, bounded, and refuses new ones.
    void removeAll();

private:
    using Temporaries = std::map<std::string, std::optional<FileState>>;
    static void removeIdentified(const Temporaries::value_type& temporary);

    std::mutex mMutex;
    Temporaries mTemporaries;
    bool mIsEnding = false;
};

} // namespace zelcore
