#include "logging/Scrubber.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tarn {

bool Scrubber::add(std::string text) {
    std::ranges::transform(text, text.begin(), [this](char each) { return folded(each); });
    if (std::ranges::find(mEntries, text) != mEntries.end()) {
        return false;
    }
    const auto isLonger = [](const std::string& left, const std::string& right) {
        return left.size() > right.size();
    };
    mEntries.insert(std::ranges::upper_bound(mEntries, text, isLonger), std::move(text));
    indexEntries();
    return true;
}

void Scrubber::indexEntries() {
    mBeginWith = {};
    mContinueWith = {};
    mAlwaysPossible = 0;
    for (std::size_t number = 0; number < mEntries.size(); ++number) {
        const std::string& entry = mEntries[number];
        if (entry.size() < 2 || entry.find('*') != std::string::npos) {
            mAlwaysPossible |= bitOf(number);
        } else {
            const auto isOf = [this](std::size_t byte, char letter) {
                return folded(static_cast<char>(byte)) == letter;
            };
            for (std::size_t byte = 0; byte < mBeginWith.size(); ++byte) {
                mBeginWith[byte] |= isOf(byte, entry[0]) ? bitOf(number) : 0;
                mContinueWith[byte] |= isOf(byte, entry[1]) ? bitOf(number) : 0;
            }
        }
    }
}

Scrubber::EntrySet Scrubber::possibleEntries(std::string_view text) const {
    EntrySet possible = mAlwaysPossible;
    EntrySet begun = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        possible |= begun & mContinueWith[byte];
        begun = mBeginWith[byte];
    }
    return possible;
}

/// What masks leave of a text holds no entry without asterisks that the text did not hold.
void Scrubber::scrub(std::string& text) {
    const EntrySet possible = mEntries.empty() ? 0 : possibleEntries(text);
    for (std::size_t number = 0; possible != 0 && number < mEntries.size(); ++number) {
        const std::string& entry = mEntries[number];
        if ((possible & bitOf(number)) == 0) {
            continue;
        }
        if (entry.find('*') == std::string::npos) {
            replaceAll(text, entry);
        } else if (entry.find_first_not_of('*') != std::string::npos) {
            replaceAllWithAsterisks(text, entry);
        }
    }
}

/// No match of an entry without asterisks can touch a mask, so one pass finds them all.
void Scrubber::replaceAll(std::string& text, const std::string& entry) {
    mFolded.resize(mIgnoresCase ? text.size() : 0);
    std::ranges::transform(std::string_view(text).substr(0, mFolded.size()), mFolded.begin(),
                           [this](char each) { return folded(each); });
    const std::string& searched = mIgnoresCase ? mFolded : text;
    std::size_t found = searched.find(entry);
    if (found == std::string::npos) {
        return;
    }
    mScratch.clear();
    std::size_t copied = 0;
    for (; found != std::string::npos; found = searched.find(entry, copied)) {
        mScratch.append(text, copied, found - copied).append(kMask);
        copied = found + entry.size();
    }
    mScratch.append(text, copied);
    text.swap(mScratch);
}

/// A mask may become part of a match here. The text is fed through a matching automaton (Knuth,
/// Morris, Pratt); a match is taken back from the output and its mask is fed in its place, ahead of
/// the rest. It ends because each match uses up a character other than the asterisk.
void Scrubber::replaceAllWithAsterisks(std::string& text, const std::string& entry) {
    std::vector<std::size_t> border(entry.size() + 1, 0); // by matched length
    const auto advance = [&](std::size_t matched, char next) {
        while (matched > 0 && (matched == entry.size() || entry[matched] != next)) {
            matched = border[matched];
        }
        return entry[matched] == next ? matched + 1 : 0;
    };
    for (std::size_t length = 1; length < entry.size(); ++length) {
        border[length + 1] = advance(border[length], entry[length]);
    }
    mScratch.clear();
    std::vector<std::size_t> states{0}; // matched length after each character of the output
    std::size_t asterisksAhead = 0;
    for (std::size_t read = 0; asterisksAhead > 0 || read < text.size();) {
        const char next = asterisksAhead > 0 ? '*' : text[read];
        if (asterisksAhead > 0) {
            --asterisksAhead;
        } else {
            ++read;
        }
        mScratch.push_back(next);
        states.push_back(advance(states.back(), folded(next)));
        if (states.back() == entry.size()) {
            mScratch.resize(mScratch.size() - entry.size());
            states.resize(states.size() - entry.size());
            asterisksAhead += kMask.size();
        }
    }
    text.swap(mScratch);
}

} // namespace tarn
