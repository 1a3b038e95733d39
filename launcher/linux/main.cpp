#include "launcher/Launcher.h"
#include "platform/ProcessStart.h"

int main(int argc, char** argv) {
    tarn::platform::prepareProcess();
    return launcher::runLauncher(std::vector<std::string>(argv, argv + argc));
}
