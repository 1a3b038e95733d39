#include "support/FakeLibraries.h"

#include "platform/Identity.h"
#include "platform/KnownFolders.h"
#include "platform/Text.h"
#include "utils/FileUtils.h"

#include <stdexcept>

namespace tarn::testing {

std::string fakeEngineFolder(const std::string& variant) {
    const FileUtils files;
    const std::string programs = files.directoryOfPath(platform::programFile());
    return files.joinPath(files.joinPath(programs, "fake-engines"), variant);
}

FakeLibrary::FakeLibrary(const std::string& variant, const std::string& baseName)
    : mCallsName(baseName == "zelclient" ? "FakeClientCalls" : "FakeEngineCalls"),
      mLibrary(platform::loadWithAlteredSearchPath(platform::toWide(
          FileUtils().joinPath(fakeEngineFolder(variant), platform::libraryFileName(baseName))))) {
    if (mLibrary == nullptr) {
        throw std::runtime_error("no fake library " + variant + "/" + baseName);
    }
}

FakeLibrary::~FakeLibrary() {
    platform::unload(mLibrary);
}

std::string FakeLibrary::calls() const {
    return function<const char* (*)()>(mCallsName.c_str())();
}

bool FakeLibrary::waitForScripts() const {
    constexpr std::uint32_t kGenerous = 20000;
    return function<std::int32_t (*)(std::uint32_t)>("FakeEngineWait")(kGenerous) == 0;
}

} // namespace tarn::testing
