#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tarn {

/// Takes "Assertion failed: ...", the line and the two texts that tell the place (file, function).
using AssertionMessageHandler =
    std::function<void(const std::string& text, std::uint32_t line, const std::string& firstSite,
                       const std::string& secondSite)>;

/// Takes the two texts of the place, the line, the expression and the message (may be empty).
using AssertionDetailHandler = std::function<void(
    const std::string& firstSite, const std::string& secondSite, std::uint32_t line,
    const std::string& expression, const std::string& message)>;

/// Replace the process's handlers; both are empty at first, and again once the program unloads.
/// Meant for start-up. A replaced handler is never destroyed: a report may still be inside it.
void setAssertionMessageHandler(AssertionMessageHandler handler);
void setAssertionDetailHandler(AssertionDetailHandler handler);

/// Reports a broken assumption to both handlers and returns: the program is never stopped, nothing
/// is logged. What a handler throws reaches the caller. Any thread.
void assertionFailed(const std::string& firstSite, std::uint32_t line,
                     const std::string& secondSite, const std::string& expression,
                     const std::string& message);

} // namespace tarn
