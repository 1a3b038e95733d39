#include "launcher/terminal/ProgressDisplay.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace launcher {
namespace {

using tarn::platform::TerminalStream;

constexpr int kWidestBar = 40;
constexpr int kNarrowestBar = 5;

std::string speedText(double bytesPerSecond) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "  %.1f MB/s", bytesPerSecond / 1e6);
    return text.data();
}

std::string timeLeftText(double seconds) {
    const auto whole = static_cast<long>(std::clamp(seconds + 0.5, 0.0, 359999.0));
    std::array<char, 64> text{};
    if (whole >= 3600) {
        std::snprintf(text.data(), text.size(), "  %ld:%02ld:%02ld left", whole / 3600,
                      whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "  %ld:%02ld left", whole / 60, whole % 60);
    }
    return text.data();
}

} // namespace

std::string progressLine(float percent, std::chrono::milliseconds elapsed, std::uint64_t bytes,
                         int width) {
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), " %3d %%", static_cast<int>(percent));
    std::string tail = number.data();
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const double share = static_cast<double>(percent) / 100.0;
    if (share > 0 && seconds > 0) {
        tail += speedText(static_cast<double>(bytes) * share / seconds);
        tail += timeLeftText(seconds / share - seconds);
    }
    const int room = width - static_cast<int>(tail.size()) - 2;
    if (room >= kNarrowestBar) {
        const int bar = std::min(room, kWidestBar);
        const auto full = static_cast<std::size_t>(share * bar);
        std::string drawn = "[";
        drawn.append(full, '#').append(static_cast<std::size_t>(bar) - full, '.').append("]");
        tail.insert(0, drawn);
    }
    return tail.substr(0, static_cast<std::size_t>(std::max(width, 0)));
}

ProgressDisplay::ProgressDisplay(std::uint64_t bytes, std::string label)
    : mBytes(bytes),
      mLabel(std::move(label)),
      mTerminal(tarn::platform::isTerminal(TerminalStream::Error)) {
}

void ProgressDisplay::update(float percent) {
    if (!mTerminal) {
        const int tenths = static_cast<int>(percent) / 10;
        if (tenths > mTenths && mLabel.empty()) {
            mTenths = tenths;
            tarn::platform::writeTerminal(TerminalStream::Error,
                                          std::to_string(tenths * 10) + " %\n");
        }
        return;
    }
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - mStart);
    // One column less than there is: a full line would wrap on some terminals.
    const int width = tarn::platform::terminalWidth(TerminalStream::Error) - 1;
    std::string line =
        mLabel + progressLine(percent, elapsed, mBytes, width - static_cast<int>(mLabel.size()));
    if (line != mShown) {
        const std::size_t leftover = mShown.size() > line.size() ? mShown.size() - line.size() : 0;
        tarn::platform::writeTerminal(TerminalStream::Error,
                                      "\r" + line + std::string(leftover, ' '));
        mShown = std::move(line);
    }
}

void ProgressDisplay::finish() {
    if (!mShown.empty()) {
        tarn::platform::writeTerminal(
            TerminalStream::Error,
            mLabel.empty() ? "\n" : "\r" + std::string(mShown.size(), ' ') + "\r");
        mShown.clear();
    }
}

} // namespace launcher
