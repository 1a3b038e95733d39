#pragma once

#include "loader/PolicySources.h"

#include <atomic>
#include <string>

namespace tarn::loader {

/// Decides whether a library may be loaded from where it lies. The machine's administrator turns
/// the protection on; then a library in an install folder needs the one embedded signature of an
/// accepted signer. Any thread.
class SideLoadingPolicy {
public:
    explicit SideLoadingPolicy(const PolicySources& sources) : mSources(sources) {}

    /// The policy of this process and machine; lives until the process ends.
    static const SideLoadingPolicy& ofProcess();

    /// True when a full path must not be loaded.
    bool refuses(const std::wstring& path) const;

    bool isInInstallFolder(const std::wstring& path) const;

    /// On when the policy value is 1 and the running program is itself signed by an accepted
    /// signer. Found out once, then kept.
    bool isSideLoadingProtectionEnabled() const;

    /// `strict`: the path is not empty and the file's properties can be read.
    bool hasAcceptedSignature(const std::wstring& path, bool strict) const;

private:
    enum class Protection { Unknown = 0, Off = 1, On = 2 };

    bool isProtectionDemanded() const;

    const PolicySources& mSources;
    mutable std::atomic<Protection> mProtection{Protection::Unknown};
};

} // namespace tarn::loader
