#include "platform/ThreadDescription.h"

#include "platform/Identity.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <pthread.h>
#include <sys/prctl.h>
#include <unordered_map>

namespace tarn::platform {
namespace {

/// The kernel's own name of a thread: 15 bytes and a terminator.
using KernelName = std::array<char, 16>;

/// The full texts, by thread. A thread's entry goes when the thread ends, by way of a pthread key:
/// its destructor also runs for threads that this library did not start.
class Descriptions {
public:
    Descriptions() { mHasKey = pthread_key_create(&mKey, &Descriptions::forgetThread) == 0; }

    void set(std::uint32_t thread, const std::string& text) {
        if (!mHasKey || pthread_setspecific(mKey, this) != 0) {
            return; // without the clean-up a later thread of the same number would inherit the text
        }
        const std::lock_guard lock(mMutex);
        const auto [entry, isNew] = mEntries.try_emplace(thread);
        Entry& description = entry->second;
        if (isNew) {
            prctl(PR_GET_NAME, description.original.data());
            description.inKernel = description.original;
        }
        description.text = text;
        const KernelName name = kernelName(thread, description);
        if (name != description.inKernel) {
            prctl(PR_SET_NAME, name.data());
            description.inKernel = name;
        }
    }

    std::string get(std::uint32_t thread) {
        const std::lock_guard lock(mMutex);
        const auto entry = mEntries.find(thread);
        return entry != mEntries.end() ? entry->second.text : std::string();
    }

private:
    struct Entry {
        std::string text;
        KernelName original{}; ///< before the first description
        KernelName inKernel{};
    };

    /// The kernel's threads always have a name. An empty text gives the main thread, whose name is
    /// the process's, its own back; a worker keeps its last, which spares two calls for each task.
    static KernelName kernelName(std::uint32_t thread, const Entry& entry) {
        if (entry.text.empty()) {
            return thread == processId() ? entry.original : entry.inKernel;
        }
        KernelName name{};
        std::copy_n(entry.text.begin(), std::min(entry.text.size(), name.size() - 1), name.begin());
        return name;
    }

    static void forgetThread(void* self) {
        auto& store = *static_cast<Descriptions*>(self);
        const std::lock_guard lock(store.mMutex);
        store.mEntries.erase(threadId());
    }

    pthread_key_t mKey = 0;
    bool mHasKey = false;
    std::mutex mMutex;
    std::unordered_map<std::uint32_t, Entry> mEntries;
};

Descriptions& descriptions() {
    // Never destroyed: threads end, and are named, while the process exits.
    static Descriptions& store = *new Descriptions;
    return store;
}

} // namespace

void setThreadDescription(const std::string& utf8Name) {
    descriptions().set(threadId(), utf8Name);
}

std::string getThreadDescription(std::uint32_t threadId) {
    return descriptions().get(threadId);
}

} // namespace tarn::platform
