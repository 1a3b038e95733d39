#include "engine/support/Losses.h"

#include "engine/support/Failure.h"

#include <algorithm>
#include <atomic>
#include <iomanip>
#include <mutex>
#include <ranges>

namespace zelcore {

namespace {

/// Damage in one place touches several packets with whole ones between them.
constexpr Ticks kSamePlace = kTicks.den;
constexpr std::size_t kMostTold = 3;
/// More than these are not looked at for the place of a new loss.
constexpr std::size_t kMostOpen = 8;

struct Shared {
    std::atomic<bool> accepted{false};
    std::mutex mutex; ///< guards sentence
    std::string sentence;
};

Shared& shared() {
    // Leaked: conversions may run while the process ends.
    static auto& instance = *new Shared();
    return instance;
}

const char* nameOf(AVMediaType kind) {
    return kind == AVMEDIA_TYPE_VIDEO      ? "picture"
           : kind == AVMEDIA_TYPE_AUDIO    ? "sound"
           : kind == AVMEDIA_TYPE_SUBTITLE ? "subtitles"
                                           : "the recording";
}

const char* wordsOf(LossCause cause) {
    switch (cause) {
        case LossCause::Damaged:
            return "are damaged and missing";
        case LossCause::CutShort:
            return "are cut off";
        case LossCause::Unusable:
            break;
    }
    return "are left out";
}

std::string clockTime(Ticks time) {
    const std::int64_t seconds = std::max<Ticks>(time, 0) / kTicks.den;
    const std::int64_t rest = seconds % 60;
    const std::string minutes =
        seconds < 3600
            ? text(seconds / 60)
            : text(seconds / 3600, seconds / 60 % 60 < 10 ? ":0" : ":", seconds / 60 % 60);
    return text(minutes, rest < 10 ? ":0" : ":", rest);
}

std::string describe(const Loss& loss) {
    const std::string where = text(" from ", clockTime(loss.begin), " on ", wordsOf(loss.cause));
    if (loss.duration > 0) {
        return text(std::fixed, std::setprecision(1), std::max(toSeconds(loss.duration), 0.1),
                    " s of ", nameOf(loss.kind), where);
    }
    const char* article = loss.kind == AVMEDIA_TYPE_UNKNOWN ? "" : "the ";
    return text("Parts of ", article, nameOf(loss.kind), where);
}

} // namespace

void Losses::add(const Loss& loss) {
    // Damage in one place touches all tracks in turn.
    const auto isSamePlace = [&](const Loss& other) {
        return other.kind == loss.kind && other.cause == loss.cause &&
               loss.begin - addTimes(other.begin, other.duration) <= kSamePlace &&
               other.begin - addTimes(loss.begin, loss.duration) <= kSamePlace;
    };
    const auto oldest =
        mAll.rbegin() + static_cast<std::ptrdiff_t>(std::min(mAll.size(), kMostOpen));
    const auto same = std::find_if(mAll.rbegin(), oldest, isSamePlace);
    if (same == oldest) {
        mAll.push_back(loss);
        return;
    }
    const Ticks end =
        std::max(addTimes(same->begin, same->duration), addTimes(loss.begin, loss.duration));
    same->begin = std::min(same->begin, loss.begin);
    same->duration = end - same->begin;
    same->pieces = addTimes(same->pieces, loss.pieces);
}

std::string Losses::sentence() const {
    std::string all;
    for (std::size_t i = 0; i < std::min(mAll.size(), kMostTold); ++i) {
        all += (i == 0 ? "" : "; ") + describe(mAll[i]);
    }
    if (mAll.size() > kMostTold) {
        all += text("; and ", mAll.size() - kMostTold, " more places");
    }
    return all;
}

void acceptLosses(bool accepted) {
    shared().accepted = accepted;
}

bool areLossesAccepted() {
    return shared().accepted;
}

void keepLossSentence(const std::string& sentence) {
    const std::lock_guard lock(shared().mutex);
    shared().sentence = sentence;
}

std::string lastLossSentence() {
    const std::lock_guard lock(shared().mutex);
    return shared().sentence;
}

} // namespace zelcore
