#pragma once

#include "platform/Library.h"

#include <cstdint>
#include <string>

namespace tarn::testing {

/// The folder of a variant of the fake engine, UTF-8; EngineSupport.cmake has the names.
std::string fakeEngineFolder(const std::string& variant);

/// Keeps one library of a fake engine loaded beside the program's own handle, for its test-only
/// functions.
class FakeLibrary {
public:
    FakeLibrary(const std::string& variant, const std::string& baseName);
    ~FakeLibrary();
    FakeLibrary(const FakeLibrary&) = delete;
    FakeLibrary& operator=(const FakeLibrary&) = delete;

    template <typename Function>
    Function function(const char* name) const {
        return reinterpret_cast<Function>(platform::findSymbol(mLibrary, name));
    }
    /// What the program called so far, one call in a line.
    std::string calls() const;
    /// Waits until the engine's threads have run their scripts to the end.
    bool waitForScripts() const;

private:
    std::string mCallsName;
    platform::LibraryHandle mLibrary;
};

} // namespace tarn::testing
