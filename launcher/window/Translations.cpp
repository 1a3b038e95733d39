#include "launcher/window/Translations.h"

#include "client/ClientFolders.h"
#include "utils/FileUtils.h"

namespace launcher {

void placeTranslations(const std::string& runtimeFolder) {
    const tarn::FileUtils files;
    const std::string from = files.joinPath(runtimeFolder, "translations");
    const std::string to =
        files.joinPath(tarn::loader::dynamicDependenciesFolder(), "translations");
    if (!files.mkdirIfNotExistsRecursive(to)) {
        return;
    }
    for (const std::string& name : files.getFiles(from)) {
        files.copyFileIfDifferent(files.joinPath(from, name), files.joinPath(to, name));
    }
}

} // namespace launcher
