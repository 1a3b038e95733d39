#include "logging/archive/ZipFolder.h"

#include "log/LogCall.h"
#include "logging/archive/ZipEntryNames.h"
#include "logging/archive/ZipWriter.h"
#include "platform/Files.h"
#include "platform/KnownFolders.h"
#include "platform/OpenFolder.h"
#include "platform/PrivateFile.h"
#include "platform/ReadFile.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <algorithm>
#include <cerrno>
#include <exception>

namespace tarn {
namespace {

ZipResult reported(const std::string& text) {
    const std::uint32_t error = platform::lastFileError();
    TARN_LOG(RootLoggerLevel::Error, text << ", errorCode: " << error);
    return {.level = RootLoggerLevel::Error, .errorCode = static_cast<int>(error), .text = text};
}

/// Beside others of the same second, and after them in the order of names: "a.zip", "a_2.zip".
std::string numbered(const std::string& path, int number) {
    const auto [stem, extension] = fileNames::splitExtension(fileNames::nameOf(path));
    return number == 1
               ? path
               : fileNames::directoryOf(path) + stem + "_" + std::to_string(number) + extension;
}

/// Keeps the step that is under way; a failure is told by it.
class FolderZip {
public:
    FolderZip(std::string folder, std::string outputFile, bool ignoreRoot, ExistingArchive existing)
        : mFolder(std::move(folder)),
          mOutputFile(std::move(outputFile)),
          mNames(ignoreRoot ? "" : fileNames::nameOf(mFolder)),
          mReplaces(existing == ExistingArchive::Replaced) {}

    ZipResult run() {
        mStep = "opening file stream: " + mOutputFile;
        const auto output = platform::PrivateFile::make(mOutputFile + ".");
        if (output == nullptr || !write(output->stream())) {
            return reported(mStep);
        }
        mStep = "closing";
        if (!output->close()) {
            return reported(mStep);
        }
        TARN_LOG(RootLoggerLevel::Debug,
                 "Finished writing zip file, added " << mCount << " files.");
        return finish(*output);
    }

private:
    bool write(std::FILE* output) {
        mStep = "creating zipper from stream: " + mOutputFile;
        ZipWriter zip(output);
        if (!zip.isOpen()) {
            return false;
        }
        mStep = "getting files from dir: " + mFolder;
        const auto folder = platform::OpenFolder::open(mFolder);
        if (folder == nullptr) {
            return false;
        }
        TARN_LOG(RootLoggerLevel::Debug, "Adding to zip : " << mFolder);
        if (!addContents(zip, *folder, "")) {
            return false;
        }
        mStep = "closing";
        return zip.close();
    }

    /// False when the archive cannot be continued.
    bool addContents(ZipWriter& zip, const platform::OpenFolder& folder,
                     const std::string& relativePath) {
        auto entries = folder.entries();
        if (!entries) {
            mStep = "getting files from dir: " + folder.path();
            return false;
        }
        std::ranges::sort(*entries, {}, &platform::FolderEntry::name);
        return std::ranges::all_of(*entries, [&](const platform::FolderEntry& entry) {
            const std::string path = relativePath + entry.name;
            if (!entry.isFolder) {
                return addFile(zip, folder, entry.name, mNames.next(path));
            }
            const auto below = folder.folder(entry.name);
            mStep = "getting files from dir: " + fileNames::join(folder.path(), entry.name);
            return below != nullptr && addContents(zip, *below, path + platform::pathSeparator());
        });
    }

    /// A file that cannot be read is told of and does not end the archive.
    bool addFile(ZipWriter& zip, const platform::OpenFolder& folder, const std::string& fileName,
                 const std::string& name) {
        const std::string path = fileNames::join(folder.path(), fileName);
        platform::ReadFile content(folder.openFile(fileName));
        if (!content.isOpen()) {
            reported("Failed to open: " + path);
            return true;
        }
        mStep = "Failed to add: " + path;
        switch (zip.add(name, content)) {
            case ZipWriter::Result::Added:
                ++mCount;
                return true;
            case ZipWriter::Result::ContentFailed:
                reported(mStep);
                return true;
            case ZipWriter::Result::ZipFailed:
                break;
        }
        const int error = errno;
        TARN_LOG(RootLoggerLevel::Error, "Error adding '" << name << "' to zip");
        errno = error;
        return false;
    }

    ZipResult finish(platform::PrivateFile& output) const {
        std::string path = mOutputFile;
        for (int number = 2; !output.moveTo(path, mReplaces) && errno == EEXIST; ++number) {
            path = numbered(mOutputFile, number);
        }
        if (!mFiles.exists(path)) {
            return reported("Failed to find output archive: " + path);
        }
        TARN_LOG(RootLoggerLevel::Debug, "Zip file present");
        const std::int64_t size = mFiles.getFileSize(path);
        if (size < 0) {
            return reported("Failed to verify filesize: " + path);
        }
        TARN_LOG(RootLoggerLevel::Debug, "Zip file valid, " << size << " bytes.");
        return {.level = RootLoggerLevel::Info, .errorCode = 0, .text = path};
    }

    const FileUtils mFiles;
    const std::string mFolder;
    const std::string mOutputFile;
    ZipEntryNames mNames;
    const bool mReplaces;
    std::string mStep;
    std::size_t mCount = 0;
};

} // namespace

ZipResult zipFolder(const std::string& folder, const std::string& outputFile, bool ignoreRoot,
                    ExistingArchive existing) {
    try {
        return FolderZip(fileNames::withoutTrailingSeparators(folder), outputFile, ignoreRoot,
                         existing)
            .run();
    } catch (const std::exception& exception) {
        return reported(std::string("Exception encountered while zipping: ") + exception.what());
    } catch (...) {
        return reported("Exception encountered while zipping: unknown");
    }
}

} // namespace tarn
