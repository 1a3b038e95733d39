#pragma once

#include "loader/PolicySources.h"

#include <string>
#include <vector>

namespace tarn::loader {

/// Where the client is installed, as the registry tells. Failures are silent: they leave the answer
/// empty.
class InstallLocation {
public:
    explicit InstallLocation(const PolicySources& sources) : mSources(sources) {}

    /// The first value found: of the user and the machine in the given order, then of the machine's
    /// 32-bit and 64-bit views. Empty when there is none.
    std::wstring getInstallPath(bool preferUser) const;

    /// The launcher folder (with a trailing separator) and the install paths; absolute drive paths
    /// only, sorted, each once.
    std::vector<std::wstring> getInstallFolders() const;

private:
    const PolicySources& mSources;
};

} // namespace tarn::loader
