#include "launcher/window/Translations.h"

#include "client/ClientFolders.h"
#include "platform/Files.h"
#include "utils/FileUtils.h"

namespace launcher {
namespace {

std::string folderOfTranslations() {
    return tarn::FileUtils().joinPath(tarn::loader::dynamicDependenciesFolder(), "translations");
}

} // namespace

Translations::Translations(const std::string& runtimeFolder) {
    const tarn::FileUtils files;
    const std::string from = files.joinPath(runtimeFolder, "translations");
    const std::string to = folderOfTranslations();
    if (!files.mkdirIfNotExistsRecursive(to)) {
        return;
    }
    for (const std::string& name : files.getFiles(from)) {
        const std::string place = files.joinPath(to, name);
        if (!files.exists(place) && files.copyFile(files.joinPath(from, name), place)) {
            mPlaced.push_back(place);
        }
    }
}

Translations::~Translations() {
    for (const std::string& place : mPlaced) {
        tarn::platform::removeFile(place);
    }
    for (const std::string& folder :
         {folderOfTranslations(), tarn::loader::dynamicDependenciesFolder(),
          tarn::loader::launcherFolder()}) {
        tarn::platform::removeEmptyFolder(folder);
    }
}

} // namespace launcher
