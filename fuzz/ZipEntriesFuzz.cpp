#include "fuzz/Input.h"
#include "logging/ZipEntryNames.h"
#include "platform/Text.h"

#include <set>

/// The root's name, then the paths of files below it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string root = input.line();
    tarn::ZipEntryNames names(root.find('/') == std::string::npos ? root : "");
    std::set<std::string> given;
    for (const std::string& path : input.lines()) {
        if (path.find_first_not_of("/.") == std::string::npos) {
            continue; // names no file
        }
        const std::string name = names.next(path);
        for (const char* outside : {"//", "/./", "/../"}) {
            FUZZ_EXPECT(!("/" + name + "/").contains(outside));
        }
        FUZZ_EXPECT(name.find_first_of("\\:") == std::string::npos);
        FUZZ_EXPECT(tarn::platform::isValidUtf8(name));
        FUZZ_EXPECT(given.insert(name).second);
    }
    return 0;
}
