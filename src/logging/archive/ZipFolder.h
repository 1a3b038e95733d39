#pragma once

#include "log/Level.h"

#include <string>

namespace tarn {

/// How zipping a folder ended: level Error, the system's error code and the step that failed, or
/// level Info and what was written.
struct ZipResult {
    RootLoggerLevel::Level level = RootLoggerLevel::Error;
    int errorCode = 0;
    std::string text;

    bool succeeded() const { return level != RootLoggerLevel::Error; }
};

/// What becomes of a file that has the archive's name.
enum class ExistingArchive {
    Replaced,
    Kept ///< the new one's name gets a number
};

/// Zips every file under a folder into a new file, which only its owner may read. Entries are named
/// by their path relative to the folder, with forward slashes; without `ignoreRoot` the folder's
/// own name goes before. A file that cannot be read, a link for one, is reported and left out. The
/// output file appears when it is complete, or not at all. Never throws; every failure is also an
/// Error line. Any thread.
ZipResult zipFolder(const std::string& folder, const std::string& outputFile, bool ignoreRoot,
                    ExistingArchive existing = ExistingArchive::Replaced);

} // namespace tarn
