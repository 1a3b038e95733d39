#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace recordconverter {

/// A list of observers that are held weakly: one that is gone is skipped and forgotten, so nobody
/// has to unregister. All operations may be called from any thread, also from inside a call.
template <typename T>
class NotificationHelper {
public:
    NotificationHelper() = default;
    NotificationHelper(const NotificationHelper&) = delete;
    NotificationHelper& operator=(const NotificationHelper&) = delete;
    virtual ~NotificationHelper() {
        const std::lock_guard lock(mMutex);
        mObservers.clear();
    }

    /// Appends the observer unless the same object is in the list already.
    void addObserver(std::weak_ptr<T> observer) {
        // Released after the mutex: the last reference to an observer runs its destructor, which
        // may well come back here.
        std::vector<std::shared_ptr<T>> alive;
        const std::shared_ptr<T> added = observer.lock();
        const std::lock_guard lock(mMutex);
        alive.reserve(mObservers.size());
        for (const std::weak_ptr<T>& entry : mObservers) {
            alive.push_back(entry.lock());
        }
        if (added == nullptr || std::ranges::find(alive, added) == alive.end()) {
            mObservers.push_back(std::move(observer));
        }
    }

    /// Calls `call(T&)` on every live observer in order of registration, outside the mutex.
    template <typename Call>
    void notifyObservers(const Call& call) {
        for (const std::weak_ptr<T>& entry : snapshot()) {
            if (const std::shared_ptr<T> observer = entry.lock()) {
                call(*observer);
            }
        }
    }

protected:
    /// Called once, under the mutex, for each entry that notifyObservers finds expired.
    virtual void onObserverExpired(std::weak_ptr<T> /*entry*/) {}

private:
    std::vector<std::weak_ptr<T>> snapshot() {
        std::vector<std::weak_ptr<T>> live;
        const std::lock_guard lock(mMutex);
        for (const std::weak_ptr<T>& entry : mObservers) {
            if (entry.expired()) {
                onObserverExpired(entry);
            } else {
                live.push_back(entry);
            }
        }
        if (live.size() < mObservers.size()) {
            mObservers = live;
        }
        return live;
    }

    std::vector<std::weak_ptr<T>> mObservers;
    std::mutex mMutex;
};

} // namespace recordconverter
