#include "launcher/Launcher.h"

int main(int argc, char** argv) {
    return launcher::runLauncher(std::vector<std::string>(argv, argv + argc));
}
