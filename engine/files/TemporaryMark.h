#pragma once

#include "engine/platform/OsFile.h"

#include <cstdint>
#include <span>
#include <string>

namespace zelcore {

/// How a conversion knows its own temporaries again when one was cut off: by their whole name, and
/// by four bytes of the file itself, the version within its kind, which players do not look at.

/// ".name.process-number.part", the name cut so that file systems take the whole.
std::string temporaryName(const std::string& destinationName, std::uint32_t process,
                          unsigned number);
/// True for a name that temporaryName makes for that destination.
bool isTemporaryName(const std::string& name, const std::string& destinationName);
/// What all of them begin and end with.
std::string temporaryPrefix(const std::string& destinationName);
inline constexpr const char* kTemporarySuffix = ".part";

/// Puts the mark into an MP4 file's first bytes.
void putMark(std::span<std::uint8_t> firstBytes);
/// True for a file with the mark, and for one without any content.
bool carriesMark(const OsFile& file);

} // namespace zelcore
