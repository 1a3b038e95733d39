#pragma once

#include <string>

namespace launcher {

/// Latin letters as small ones.
std::string lowered(std::string text);

/// The name ends in .mp4, in capitals or not.
bool isMp4(const std::string& path);

/// What the user finds the recording under: `source` with .mp4 instead of its own extension, in
/// `folder`, or beside it where that is empty. One that is .mp4 itself gets " (converted)".
std::string destinationFor(const std::string& source, const std::string& folder);

/// Whether a file in a folder is a recording: by its extension, so that a broken one is not passed
/// over in silence, or by how it begins.
bool isRecording(const std::string& path);

} // namespace launcher
