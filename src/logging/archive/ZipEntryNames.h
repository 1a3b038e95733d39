#pragma once

#include <set>
#include <string>
#include <string_view>

namespace tarn {

/// Makes the names of one archive's entries from paths below the zipped folder. Whatever the files
/// are called, a name stays inside the folder that a reader on any system unpacks to: it is never
/// absolute, has forward slashes only, no empty, "." or ".." between them, and is valid UTF-8. No
/// name is given twice. Not thread-safe.
class ZipEntryNames {
public:
    /// `root` stands before every name; empty: nothing does.
    explicit ZipEntryNames(std::string root) : mRoot(std::move(root)) {}

    std::string next(std::string_view relativePath);

private:
    std::string mRoot;
    std::set<std::string> mGiven;
};

} // namespace tarn
