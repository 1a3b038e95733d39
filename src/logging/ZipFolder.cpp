#include "logging/ZipFolder.h"

#include "logging/LogCall.h"
#include "logging/ZipEntryNames.h"
#include "logging/ZipWriter.h"
#include "platform/Files.h"
#include "utils/FileNames.h"
#include "utils/FileUtils.h"

#include <cerrno>
#include <exception>
#include <fstream>

namespace tarn {
namespace {

constexpr std::int64_t kTimeUnitsPerSecond = 10'000'000;
/// Until it is complete, the archive's name says that it is not.
constexpr const char* kUnfinished = ".part";

ZipResult reported(const std::string& text) {
    const int error = errno;
    TARN_LOG(RootLoggerLevel::Error, text << ", errorCode: " << error);
    return {.level = RootLoggerLevel::Error, .errorCode = error, .text = text};
}

class FolderZip {
public:
    FolderZip(std::string folder, std::string outputFile, bool ignoreRoot)
        : mFolder(std::move(folder)),
          mOutputFile(std::move(outputFile)),
          mNames(ignoreRoot ? "" : fileNames::nameOf(mFolder)) {}

    ZipResult run() {
        std::ofstream output;
        ZipResult result = write(output);
        output.close();
        if (result.succeeded() && output.fail()) {
            result = reported("closing: " + mOutputFile);
        }
        if (result.succeeded()) {
            result = finish();
        }
        if (!result.succeeded()) {
            mFiles.remove(mOutputFile + kUnfinished);
        }
        return result;
    }

private:
    ZipResult write(std::ofstream& output) {
        output.open(platform::nativePath(mOutputFile + kUnfinished),
                    std::ios::binary | std::ios::trunc);
        if (!output) {
            return reported("opening file stream: " + mOutputFile);
        }
        ZipWriter zip(output);
        if (!zip.isOpen()) {
            return reported("creating zipper from stream: " + mOutputFile);
        }
        const auto files = mFiles.getFilesRecursive(mFolder);
        const std::size_t rootLength = mFiles.joinPath(mFolder, "").size();
        TARN_LOG(RootLoggerLevel::Debug, "Adding to zip : " << mFolder);
        for (const std::string& file : files) {
            if (!add(zip, file, mNames.next(file.substr(rootLength)))) {
                return reported("Failed to add: " + file);
            }
        }
        if (!zip.close()) {
            return reported("closing: " + mOutputFile);
        }
        TARN_LOG(RootLoggerLevel::Debug,
                 "Finished writing zip file, added " << mCount << " files.");
        return {.level = RootLoggerLevel::Info, .errorCode = 0, .text = mOutputFile};
    }

    /// False when the archive cannot be continued; a file that cannot be read does not prevent it.
    bool add(ZipWriter& zip, const std::string& file, const std::string& name) {
        const auto details = mFiles.getFileDetails(file);
        std::ifstream content(platform::nativePath(file), std::ios::binary);
        if (!details || !content) {
            reported("Failed to open: " + file);
            return true;
        }
        if (!zip.add(name, content, details->size, details->modified / kTimeUnitsPerSecond)) {
            TARN_LOG(RootLoggerLevel::Error, "Error adding '" << name << "' to zip");
            return false;
        }
        if (content.bad()) {
            reported("Failed to add: " + file);
            return true;
        }
        ++mCount;
        return true;
    }

    ZipResult finish() const {
        // Not every system's renaming replaces.
        mFiles.remove(mOutputFile);
        mFiles.rename(mOutputFile + kUnfinished, mOutputFile);
        if (!mFiles.exists(mOutputFile)) {
            return reported("Failed to find output archive: " + mOutputFile);
        }
        TARN_LOG(RootLoggerLevel::Debug, "Zip file present");
        const std::int64_t size = mFiles.getFileSize(mOutputFile);
        if (size < 0) {
            return reported("Failed to verify filesize: " + mOutputFile);
        }
        TARN_LOG(RootLoggerLevel::Debug, "Zip file valid, " << size << " bytes.");
        return {.level = RootLoggerLevel::Info, .errorCode = 0, .text = mOutputFile};
    }

    const FileUtils mFiles;
    const std::string mFolder;
    const std::string mOutputFile;
    ZipEntryNames mNames;
    std::size_t mCount = 0;
};

} // namespace

ZipResult zipFolder(const std::string& folder, const std::string& outputFile, bool ignoreRoot) {
    try {
        return FolderZip(fileNames::withoutTrailingSeparators(folder), outputFile, ignoreRoot)
            .run();
    } catch (const std::exception& exception) {
        return reported(std::string("Exception encountered while zipping: ") + exception.what());
    }
}

} // namespace tarn
