#include "platform/ProcessStart.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tarn::platform {

void prepareProcess() {
    // The lowest free number is the next one given.
    for (int file = open("/dev/null", O_RDWR); file >= 0; file = open("/dev/null", O_RDWR)) {
        if (file > STDERR_FILENO) {
            close(file);
            break;
        }
    }
    // A handler instead of SIG_IGN, which the programs that we start would inherit.
    struct sigaction action = {};
    action.sa_handler = [](int /*signal*/) {};
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGXFSZ, &action, nullptr);
}

} // namespace tarn::platform
