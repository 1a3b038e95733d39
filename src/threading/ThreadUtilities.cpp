#include "threading/ThreadUtilities.h"

#include "platform/Identity.h"
#include "platform/ThreadDescription.h"

#include <algorithm>
#include <array>

namespace tarn::ThreadUtilities {
namespace {

/// The thread's own copy of its name, for its log records: a buffer without a destructor, because a
/// thread-local object that has one reads freed memory in MinGW libraries.
struct NameCopy {
    std::array<char, 120> text{};
    std::size_t size = 0;
    bool isWhole = true; ///< false: too long to be kept, the platform has it

    std::string_view view() const { return {text.data(), size}; }
};

thread_local NameCopy nameCopy;

} // namespace

void setThreadDescription(const std::string& utf8Name) {
    nameCopy.isWhole = utf8Name.size() <= nameCopy.text.size();
    nameCopy.size = nameCopy.isWhole ? utf8Name.size() : 0;
    std::copy_n(utf8Name.begin(), nameCopy.size, nameCopy.text.begin());
    platform::setThreadDescription(utf8Name);
}

std::string getThreadDescription(std::uint32_t threadId) {
    return platform::getThreadDescription(threadId);
}

std::string_view currentThreadName(std::string& whenLong) {
    if (nameCopy.isWhole) {
        return nameCopy.view();
    }
    whenLong = platform::getThreadDescription(platform::threadId());
    return whenLong;
}

bool isCurrentThreadName(const std::string& name) {
    return nameCopy.isWhole && nameCopy.view() == name;
}

} // namespace tarn::ThreadUtilities
