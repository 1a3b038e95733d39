#include "fuzz/Input.h"
#include "platform/Text.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <regex>
#include <set>

namespace {

/// A folder that holds only what the fuzzer names.
class NamedFiles : public tarn::FileUtils {
public:
    using FileUtils::exists;
    bool exists(const std::string& path, int& error) const override {
        error = 0;
        return taken.contains(path);
    }
    std::set<std::string> taken;
};

void checkNames(const std::string& name) {
    static const auto& identifier = *new std::regex(
        R"(_(\{){0,1}[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12})"
        R"([0-9]{0,2}(\(([0-9)]){0,2}\))?(\}){0,1})");
    const std::string clean = tarn::fileNames::sanitize(name);
    FUZZ_EXPECT(clean.size() == name.size());
    FUZZ_EXPECT(clean.find_first_of(R"(\/:*?"<>|)") == std::string::npos);
    const auto [stem, extension] = tarn::fileNames::splitExtension(name);
    FUZZ_EXPECT(stem + extension == name);
    FUZZ_EXPECT(extension.empty() || (extension.front() == '.' && !stem.empty()));
    // The standard expression engine recurses for each character of a long text.
    if (name.size() < 2000) {
        FUZZ_EXPECT(tarn::fileNames::withoutIdentifiers(name) ==
                    std::regex_replace(name, identifier, ""));
    }
    FUZZ_EXPECT(tarn::fileNames::directoryOf(name) + tarn::fileNames::nameOf(name) == name);
    const std::string wellFormed = tarn::platform::toUtf8(tarn::platform::toWide(name));
    FUZZ_EXPECT(tarn::platform::isValidUtf8(wellFormed));
    FUZZ_EXPECT((wellFormed == name) == tarn::platform::isValidUtf8(name));
}

void checkUniquePath(const std::string& name, const std::vector<std::string>& taken) {
    NamedFiles files;
    for (const std::string& other : taken) {
        files.taken.insert("/folder/" + other);
    }
    const std::string path = files.getUniqueDownloadPath("/folder/", name);
    FUZZ_EXPECT(path.starts_with("/folder/") && path.rfind('/') == 7);
    const std::string first = "/folder/" + tarn::fileNames::sanitize(name);
    FUZZ_EXPECT(files.taken.contains(first) || path == first);
    FUZZ_EXPECT(taken.size() >= 99 || !files.taken.contains(path));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string name = input.line();
    checkNames(name);
    checkUniquePath(name, input.lines());
    return 0;
}
