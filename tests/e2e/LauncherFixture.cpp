#include "e2e/LauncherFixture.h"

#include "platform/Identity.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace e2e {

Process::Start LauncherFixture::windowCommand(const std::vector<std::string>& arguments) const {
    const tarn::FileUtils files;
    const std::string own = tarn::platform::programFile();
    const std::string programs = files.joinPath(files.directoryOfPath(own) + "..", "bin");
    Process::Start start{
        .command = {files.joinPath(programs, "record-converter" + files.extensionOfPath(own))},
        .environment = {{"XDG_DATA_HOME", mData.path()}},
        .folder = mFolder.path()};
    start.command.insert(start.command.end(), arguments.begin(), arguments.end());
    return start;
}

std::string LauncherFixture::logFolder() const {
    const std::string help = launch({"--help"}).output;
    const std::size_t begin = help.rfind("log: ") + 5;
    return help.substr(begin, help.find_first_of("\r\n", begin) - begin);
}

std::vector<std::string> LauncherFixture::logLines() const {
    const tarn::FileUtils files;
    return files.readAllLines(files.joinPath(logFolder(), "current_log.txt"));
}

int LauncherFixture::logged(const std::string& text) const {
    return static_cast<int>(
        std::ranges::count_if(logLines(), [&](const auto& line) { return line.contains(text); }));
}

std::vector<std::string> LauncherFixture::filesLeft() const {
    std::vector<std::string> names = tarn::FileUtils().getFilesRecursive(mFolder.path());
    for (std::string& name : names) {
        name.erase(0, mFolder.path().size() + 1);
    }
    std::ranges::sort(names);
    return names;
}

bool LauncherFixture::exists(const std::string& path) {
    return tarn::FileUtils().exists(path);
}

} // namespace e2e
