#include "launcher/ArchiveLogs.h"
#include "launcher/Say.h"

namespace launcher {

ExitStatus archiveLogs(const std::string& /*destination*/) {
    return refuse("This program was built without minizip and cannot archive logs.");
}

} // namespace launcher
