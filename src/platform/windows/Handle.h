#pragma once

#include <windows.h>

namespace tarn::platform {

/// Owns a kernel handle; INVALID_HANDLE_VALUE and null are none.
class Handle {
public:
    explicit Handle(HANDLE handle) : mHandle(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (*this) {
            CloseHandle(mHandle);
        }
    }

    explicit operator bool() const { return mHandle != nullptr && mHandle != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return mHandle; }

private:
    HANDLE mHandle;
};

} // namespace tarn::platform
