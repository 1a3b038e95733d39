#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace launcher {

/// What a number stands for, without a full stop.
struct Meaning {
    std::int32_t number;
    std::string_view text;
};

/// The program's exit statuses.
std::span<const Meaning> statusMeanings();
/// The errors of the media engine, as docs/engine-contract.md lists them.
std::span<const Meaning> errorMeanings();

/// The answer to --explain; empty for a number without a meaning.
std::string explanation(std::string_view number);

} // namespace launcher
