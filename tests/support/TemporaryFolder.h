#pragma once

#include "platform/KnownFolders.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace tarn::testing {

inline std::filesystem::path filePath(const std::string& utf8) {
    return {std::u8string(utf8.begin(), utf8.end())};
}

/// The whole content of a file; empty when it cannot be read.
inline std::string readFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(filePath(path), std::ios::binary).rdbuf();
    return std::move(content).str();
}

/// A folder of its own for one test, removed with all that is in it. Paths are UTF-8.
class TemporaryFolder {
public:
    TemporaryFolder() {
        mPath = (platform::temporaryFolder() + platform::pathSeparator())
                    .append("rc-test-" + std::to_string(std::random_device()()));
        std::filesystem::create_directory(filePath(mPath));
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(filePath(mPath), ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, without a trailing separator.
    const std::string& path() const { return mPath; }
    std::string operator/(const std::string& name) const {
        return mPath + platform::pathSeparator() + name;
    }
    /// Writes a file and gives its full path.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(filePath(*this / name), std::ios::binary) << content;
        return *this / name;
    }
    /// Makes a folder and gives its full path.
    std::string makeFolder(const std::string& name) const {
        std::filesystem::create_directory(filePath(*this / name));
        return *this / name;
    }

private:
    std::string mPath;
};

} // namespace tarn::testing
