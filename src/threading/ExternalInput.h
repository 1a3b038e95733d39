#pragma once

#include <memory>
#include <string>

namespace tarn {

/// What a thread is working on behalf of: two texts that travel with the calls it makes. Each
/// thread has a current value of its own, empty when the thread starts.
struct hint_external_input {
    std::string first;
    std::string second;

    /// Sets the calling thread's value. Whoever sets it clears it before the thread ends, or works
    /// inside a ScopedThreadNotifications, whose closing does: the storage is a plain pointer,
    /// because a thread-local object with a destructor reads freed memory in MinGW libraries.
    static void set(std::string first, std::string second);
    static void clear() noexcept;
    /// A shared copy of the calling thread's value; null when its first text is empty.
    static std::shared_ptr<const hint_external_input> share();
};

} // namespace tarn
