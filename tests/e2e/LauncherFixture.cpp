#include "e2e/LauncherFixture.h"

#include "platform/Identity.h"
#include "support/FakeLibraries.h"
#include "utils/FileUtils.h"

#include <algorithm>

namespace e2e {

Process::Start LauncherFixture::windowCommand(const std::vector<std::string>& arguments) const {
    const tarn::FileUtils files;
    const std::string own = tarn::platform::programFile();
    const std::string build = files.directoryOfPath(own) + "..";
    const std::string program = files.joinPath(files.joinPath(build, "bin"),
                                               "record-converter" + files.extensionOfPath(own));
    Process::Start start{.command = {program},
                         .environment = {{"XDG_DATA_HOME", mData.path()}},
                         .folder = mFolder.path()};
    start.command.insert(start.command.end(), arguments.begin(), arguments.end());
    return start;
}

Process::Start LauncherFixture::command(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "--no-window");
    return windowCommand(arguments);
}

ProcessResult LauncherFixture::launch(const std::vector<std::string>& arguments) const {
    return tarn::testing::runProcess(command(arguments));
}

ProcessResult LauncherFixture::launchFake(const std::string& variant,
                                          std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(),
                     {"--engine-folder", tarn::testing::fakeEngineFolder(variant)});
    return launch(arguments);
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
    std::vector<std::string> names;
    const tarn::FileUtils files;
    for (const std::string& path : files.getFilesRecursive(mFolder.path())) {
        names.push_back(path.substr(mFolder.path().size() + 1));
    }
    std::ranges::sort(names);
    return names;
}

bool LauncherFixture::exists(const std::string& path) {
    return tarn::FileUtils().exists(path);
}

} // namespace e2e
