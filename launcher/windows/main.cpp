#include "launcher/Launcher.h"
#include "platform/Library.h"
#include "platform/Text.h"

int wmain(int argc, wchar_t** argv) {
    tarn::platform::useDefaultLibraryFolders();
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.push_back(tarn::platform::toUtf8(argv[i]));
    }
    return launcher::runLauncher(arguments);
}
