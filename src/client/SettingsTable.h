#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace tarn {

/// Text settings by key, shared by the whole process. Empty unless a program fills it; this one
/// does not. Any thread.
class SettingsTable {
public:
    /// Created on first use, never destroyed: the logger's worker may ask while the process exits.
    static SettingsTable& ofProcess() {
        static SettingsTable& table = *new SettingsTable;
        return table;
    }

    void set(const std::string& key, const std::string& value) {
        const std::lock_guard lock(mMutex);
        mValues[key] = value;
    }
    void remove(const std::string& key) {
        const std::lock_guard lock(mMutex);
        mValues.erase(key);
    }
    std::optional<std::string> value(const std::string& key) const {
        const std::lock_guard lock(mMutex);
        const auto found = mValues.find(key);
        return found != mValues.end() ? std::optional(found->second) : std::nullopt;
    }

private:
    mutable std::mutex mMutex;
    std::map<std::string, std::string> mValues;
};

} // namespace tarn
