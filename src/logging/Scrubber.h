#pragma once

#include "platform/KnownFolders.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// Masks personal strings. What scrub() leaves is what this gives: for each string, longest first,
/// the first occurrence is replaced by eight asterisks and the search begins again at the front,
/// until there is none. It takes linear time and always ends: a string of nothing but asterisks,
/// which would be found in its own mask for ever, hides nothing and is passed over. Where names of
/// files ignore case, so does it, for ASCII letters. Not thread-safe.
class Scrubber {
public:
    static constexpr std::string_view kMask = "********";

    explicit Scrubber(bool ignoresCase = platform::pathSeparator() == '\\')
        : mIgnoresCase(ignoresCase) {}

    /// False when the string is already there.
    bool add(std::string text);
    void scrub(std::string& text);

private:
    /// One bit for each entry; entries beyond the first 32 share them.
    using EntrySet = std::uint32_t;

    char folded(char character) const {
        return mIgnoresCase && character >= 'A' && character <= 'Z'
                   ? static_cast<char>(character - 'A' + 'a')
                   : character;
    }
    static EntrySet bitOf(std::size_t number) { return EntrySet{1} << (number % 32U); }
    void indexEntries();
    /// The entries that `text` may hold, found in one pass over it.
    EntrySet possibleEntries(std::string_view text) const;
    void replaceAll(std::string& text, const std::string& entry);
    void replaceAllWithAsterisks(std::string& text, const std::string& entry);

    const bool mIgnoresCase;
    std::vector<std::string> mEntries;         ///< folded, longest first
    std::array<EntrySet, 256> mBeginWith{};    ///< by character
    std::array<EntrySet, 256> mContinueWith{}; ///< by second character
    EntrySet mAlwaysPossible = 0; ///< those that masks may complete, or of one character
    std::string mScratch;
    std::string mFolded;
};

} // namespace tarn
