#include "platform/ThreadDescription.h"

#include "platform/Text.h"
#include "platform/windows/Handle.h"
#include "platform/windows/Kernel32.h"

#include <windows.h>

#include <bit>

namespace tarn::platform {
namespace {

using SetFunction = HRESULT(WINAPI*)(HANDLE thread, PCWSTR description);
using GetFunction = HRESULT(WINAPI*)(HANDLE thread, PWSTR* description);

/// Looking a function up may log, and a log record asks for its thread's description: the inner
/// question must not wait for the outer one's static.
class LookUp {
public:
    LookUp() { ++depth(); }
    ~LookUp() { --depth(); }
    LookUp(const LookUp&) = delete;
    LookUp& operator=(const LookUp&) = delete;

    static bool isRunning() { return depth() > 0; }

private:
    static int& depth() {
        thread_local int value = 0;
        return value;
    }
};

template <typename Function>
Function lookedUp(const char* name) {
    const LookUp running;
    return std::bit_cast<Function>(loadKernel32Function(name));
}

SetFunction setFunction() {
    if (LookUp::isRunning()) {
        return nullptr;
    }
    static const auto function = lookedUp<SetFunction>("SetThreadDescription");
    return function;
}

GetFunction getFunction() {
    if (LookUp::isRunning()) {
        return nullptr;
    }
    static const auto function = lookedUp<GetFunction>("GetThreadDescription");
    return function;
}

} // namespace

void setThreadDescription(const std::string& utf8Name) {
    const std::wstring name = toWide(utf8Name);
    if (const SetFunction set = setFunction()) {
        set(GetCurrentThread(), name.c_str());
    }
}

std::string getThreadDescription(std::uint32_t threadId) {
    const Handle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, threadId));
    if (!thread) {
        return {};
    }
    const GetFunction get = getFunction();
    PWSTR description = nullptr;
    const HRESULT result = get != nullptr ? get(thread.get(), &description) : E_FAIL;
    std::string text;
    // Success is not always S_OK: real systems answer with other codes of success.
    if (SUCCEEDED(result) && description != nullptr) {
        text = toUtf8(description);
        LocalFree(description);
    }
    return text;
}

} // namespace tarn::platform
