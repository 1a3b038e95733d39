#include "support/TemporaryFolder.h"

#include "platform/Files.h"
#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "utils/FileUtils.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tarn::testing {
namespace {

std::filesystem::path native(const std::string& path) {
    return std::filesystem::path(platform::nativePath(path));
}

} // namespace

TemporaryFolder::TemporaryFolder() {
    constexpr int kMostLeftBehind = 1000;
    static std::atomic<int> number = 0;
    const std::string beginning =
        FileUtils().joinPath(platform::temporaryFolder(), "record-converter-test-") +
        std::to_string(platform::processId()) + "-";
    // Process numbers come again, soon so under Wine: a killed test's folder may have the name.
    do {
        mPath = beginning + std::to_string(++number);
    } while (!FileUtils().mkdir(mPath) && FileUtils().exists(mPath) && number < kMostLeftBehind);
    if (!FileUtils().dirExists(mPath) || number >= kMostLeftBehind) {
        throw std::runtime_error("can not make " + mPath);
    }
}

TemporaryFolder::~TemporaryFolder() {
    FileUtils().removeNonEmptyDir(mPath);
}

std::string TemporaryFolder::operator/(const std::string& name) const {
    return FileUtils().joinPath(mPath, name);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
    std::ofstream file(native(*this / name), std::ios::binary);
    file << content;
    file.close();
    if (!file) {
        throw std::runtime_error("can not write " + *this / name);
    }
    return *this / name;
}

std::string TemporaryFolder::makeFolder(const std::string& name) const {
    if (!FileUtils().mkdir(*this / name)) {
        throw std::runtime_error("can not make " + *this / name);
    }
    return *this / name;
}

std::string readFile(const std::string& path) {
    std::ifstream file(native(path), std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf(); // character by character, a recording costs seconds under a sanitizer
    return std::move(content).str();
}

} // namespace tarn::testing
