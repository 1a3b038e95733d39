#pragma once

#include "platform/Files.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

/// A folder that was opened once and is reached through that handle from then on: whoever puts
/// something else in its place or in the place of a folder inside it leads nobody there. No link is
/// followed. Linux walks by descriptors; Windows holds handles that keep the folders from being
/// moved. Not thread-safe.
class OpenFolder {
public:
    /// Nothing for a link, and for what is no folder.
    static std::unique_ptr<OpenFolder> open(const std::string& path);
    /// Makes a folder in `parent` for its owner alone, named `prefix` and what nobody can foresee,
    /// and marks it as in use.
    static std::unique_ptr<OpenFolder> makePrivate(const std::string& parent,
                                                   const std::string& prefix);
    /// Opens a folder that makePrivate() made and that nobody uses any more; nothing for any other.
    static std::unique_ptr<OpenFolder> openLeftover(const std::string& path);

    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder();

    const std::string& path() const { return mPath; }
    std::optional<std::vector<FolderEntry>> entries() const;
    std::unique_ptr<OpenFolder> folder(const std::string& name) const;
    /// For reading, from 0 on; -1 for a link, and for what is no ordinary file. Closed by ReadFile.
    std::intptr_t openFile(const std::string& name) const;
    /// Copies an ordinary file into the folder, for the owner alone, with its modification time.
    /// EEXIST when the name is taken.
    bool copyIn(const std::string& from, const std::string& name) const;
    /// Makes a folder in the folder for its owner alone.
    bool makeFolder(const std::string& name) const;
    /// Give a file a name in the folder; a link's target is what it leads to.
    bool makeHardLink(const std::string& target, const std::string& name) const;
    bool makeSymbolicLink(const std::string& target, const std::string& name) const;
    /// Removes what is in the folder, and then the folder itself. False when something stays.
    bool removeContents() const;
    bool removeAll();

private:
    OpenFolder(std::string path, std::intptr_t handle) : mPath(std::move(path)), mHandle(handle) {}
    void close();

    std::string mPath;
    std::intptr_t mHandle; ///< Linux: descriptor, Windows: HANDLE
};

/// True when users other than the caller and the administrator can put something else under the
/// name of what lies in the folder: they may write to it, or to a folder above it. Windows: false;
/// a folder that is held open keeps its name there.
bool canOthersReplaceIn(const std::string& folder);

/// `prefix` and 16 hexadecimal digits of the system's randomness.
std::string unforeseeableName(const std::string& prefix);

} // namespace tarn::platform
