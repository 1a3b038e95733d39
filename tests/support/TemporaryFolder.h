#pragma once

#include <string>

namespace tarn::testing {

/// A folder of its own for one test, removed with all that is in it. Paths are UTF-8.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a trailing separator.
    const std::string& path() const { return mPath; }
    /// The full path of a name in the folder.
    std::string operator/(const std::string& name) const;
    /// Writes a file and gives its full path.
    std::string write(const std::string& name, const std::string& content) const;
    /// Makes a folder and gives its full path.
    std::string makeFolder(const std::string& name) const;

private:
    std::string mPath;
};

/// The whole content of a file; empty when it cannot be read.
std::string readFile(const std::string& path);

} // namespace tarn::testing
