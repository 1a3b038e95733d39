#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Masks personal strings. What scrub() leaves is what this gives: for each string, longest first,
/// the first occurrence is replaced by eight asterisks and the search begins again at the front,
/// until there is none. It takes linear time and always ends: a string of nothing but asterisks,
/// which would be found in its own mask for ever, hides nothing and is passed over. Not
/// thread-safe.
class Scrubber {
public:
    static constexpr std::string_view kMask = "********";

    /// False when the string is already there.
    bool add(std::string text);
    void scrub(std::string& text);

private:
    void replaceAll(std::string& text, const std::string& entry);
    void replaceAllWithAsterisks(std::string& text, const std::string& entry);

    std::vector<std::string> mEntries; ///< longest first
    std::string mScratch;
};

} // namespace tarn
