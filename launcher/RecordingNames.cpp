#include "launcher/RecordingNames.h"

#include "launcher/Paths.h"
#include "platform/FileIdentity.h"
#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace launcher {
namespace {

constexpr auto kExtensions = std::to_array<std::string_view>({
    ".3g2", ".3gp",  ".aac",  ".ac3",  ".aif",  ".aiff", ".amr",  ".asf", ".avi",
    ".caf", ".eac3", ".f4v",  ".flac", ".flv",  ".m2ts", ".m4a",  ".m4v", ".mka",
    ".mkv", ".mov",  ".mp3",  ".mp4",  ".mpeg", ".mpg",  ".mts",  ".mxf", ".oga",
    ".ogg", ".ogv",  ".opus", ".ts",   ".vob",  ".wav",  ".webm", ".wma", ".wmv",
});

struct Beginning {
    std::size_t at;
    std::string_view bytes;
    std::size_t secondAt = 0;
    std::string_view second{};
};

constexpr std::size_t kPacketOfTransport = 188;
constexpr auto kBeginnings = std::to_array<Beginning>({
    {0, "\x1A\x45\xDF\xA3"}, // Matroska, WebM
    {0, "RIFF", 8, "AVI "},
    {0, "RIFF", 8, "WAVE"},
    {4, "ftypisom"},
    {4, "ftypiso"},
    {4, "ftypmp4"},
    {4, "ftypM4"},
    {4, "ftypqt"},
    {4, "ftyp3g"},
    {4, "ftypavc1"},
    {4, "ftypdash"},
    {4, "moov"},
    {0, "OggS"},
    {0, "FLV\x01"},
    {0, "fLaC"},
    {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"}, // ASF
    {0, std::string_view("\0\0\1\xBA", 4)},  // MPEG program stream
    {0, "G", kPacketOfTransport, "G"},       // MPEG transport stream
});

bool hasKnownExtension(const std::filesystem::path& path) {
    const std::string extension = lowered(toText(path.extension()));
    return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

} // namespace

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return text;
}

bool isMp4(const std::string& path) {
    return lowered(path).ends_with(".mp4");
}

std::string destinationFor(const std::string& source, const std::string& folder) {
    const std::filesystem::path path = fromText(source);
    // "Meeting 2026.11.22" has no extension.
    const std::string stem = toText(hasKnownExtension(path) ? path.stem() : path.filename());
    const auto parent = folder.empty() ? path.parent_path() : fromText(folder);
    return toText(parent / fromText(stem + (isMp4(source) ? " (converted).mp4" : ".mp4")));
}

bool isRecording(const std::string& path) {
    const auto identity = tarn::platform::identifyFile(path);
    // Opening a pipe might wait for ever.
    if (!identity || identity->kind != tarn::platform::FileKind::Ordinary) {
        return false;
    }
    if (hasKnownExtension(fromText(path))) {
        return true;
    }
    std::array<char, kPacketOfTransport + 1> bytes{};
    std::ifstream file(tarn::platform::nativePath(path), std::ios::binary);
    file.read(bytes.data(), bytes.size());
    const std::string_view begin(bytes.data(), static_cast<std::size_t>(file.gcount()));
    const auto holds = [&](std::size_t at, std::string_view wanted) {
        return begin.size() >= at + wanted.size() && begin.substr(at, wanted.size()) == wanted;
    };
    return std::ranges::any_of(kBeginnings, [&](const Beginning& each) {
        return holds(each.at, each.bytes) && holds(each.secondAt, each.second);
    });
}

} // namespace launcher
