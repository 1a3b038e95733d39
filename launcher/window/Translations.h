#pragma once

#include <string>
#include <vector>

namespace launcher {

/// The translations that come with the runtime folder, lent to the place where the window looks for
/// them: the client fetches its own there. What is there already is left alone. Without them the
/// window speaks English.
class Translations {
public:
    explicit Translations(const std::string& runtimeFolder);
    Translations(const Translations&) = delete;
    Translations& operator=(const Translations&) = delete;
    /// Removes what this has placed, and the folders when they are empty then: the window reads
    /// them once, at its start.
    ~Translations();

private:
    std::vector<std::string> mPlaced;
};

} // namespace launcher
