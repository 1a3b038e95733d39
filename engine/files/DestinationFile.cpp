#include "engine/files/DestinationFile.h"

#include "engine/files/Avio.h"
#include "engine/files/LiveTemporaries.h"
#include "engine/files/TemporaryMark.h"
#include "engine/platform/OsPath.h"
#include "engine/support/Trace.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace zelcore {

namespace {

// Small enough to stay in the processor's cache until the system has copied it.
constexpr int kWriteBufferSize = 128 * 1024;
// The disk starts early, in such steps, and never lags further behind than the limit: the sync at
// the end waits for little, and memory does not fill up with what is still to be written.
constexpr std::uint64_t kWriteBackStep = 8 * 1024 * 1024;
constexpr std::uint64_t kMostUnwritten = 64 * 1024 * 1024;

bool isASource(const std::vector<std::string>& sources, const OsFile& file) {
    FileState wanted;
    return file.state(wanted) != 0 ||
           std::ranges::any_of(sources, [&wanted](const std::string& source) {
               FileState state;
               return stateOf(source, state) == 0 && state.isSameFileAs(wanted);
           });
}

} // namespace

DestinationFile::DestinationFile(std::string destination, const std::vector<std::string>& sources,
                                 const StopFlag& stop)
    : mDestination(std::move(destination)), mFolder(folderOf(mDestination)), mStop(stop) {
    refuseUnlessFree(sources);
    removeLeftovers(sources);
    mIo = makeAvio(kWriteBufferSize, true, this, &onWrite, &onSeek);
    // Else each packet is written by a call of its own.
    mIo->min_packet_size = kWriteBufferSize;
    createTemporary(sources);
}

DestinationFile::~DestinationFile() {
    mFile.close();
    mHold.close();
    LiveTemporaries::instance().remove(mTemporary);
}

void DestinationFile::refuseUnlessFree(const std::vector<std::string>& sources) {
    FileState folder;
    if (stateOf(mFolder, folder) != 0 || !folder.isFolder) {
        throw Failure(ErrorCode::DestinationFolderMissing,
                      text("The destination's folder \"", mFolder, "\" does not exist"));
    }
    if (isLink(mDestination)) {
        throw Failure(ErrorCode::DestinationNotAFile,
                      text("Destination \"", mDestination, "\" is a link to another place"));
    }
    FileState existing;
    const int error = stateOf(mDestination, existing);
    if (error == ENOENT) {
        return;
    }
    if (error != 0) {
        fail(error, "looking at it");
    }
    if (!existing.isOrdinary) {
        throw Failure(ErrorCode::DestinationNotAFile,
                      text("Destination \"", mDestination, "\" is there and is no ordinary file"));
    }
    for (const std::string& source : sources) {
        FileState state;
        if (stateOf(source, state) == 0 && state.isSameFileAs(existing)) {
            throw Failure(
                ErrorCode::DestinationIsSource,
                text("Destination \"", mDestination, "\" is the source \"", source, "\""));
        }
    }
    if (isWriteProtected(mDestination)) {
        fail(EACCES, "asking whether it may be replaced");
    }
    mIsReplacing = true;
}

void DestinationFile::removeLeftovers(const std::vector<std::string>& sources) const {
    const std::string destination = nameOf(mDestination);
    for (const std::string& name :
         namesIn(mFolder, temporaryPrefix(destination), kTemporarySuffix)) {
        OsFile file;
        const std::string path = joinPath(mFolder, name);
        if (!isTemporaryName(name, destination) || OsFile::openToRemove(path, file) != 0) {
            continue;
        }
        if (!carriesMark(file) || isASource(sources, file)) {
            trace(TraceLevel::Warning,
                  text("\"", name, "\" has the name of a temporary and is none: it stays"));
        } else if (file.remove(path) == 0) {
            trace(TraceLevel::Info,
                  text("Removed \"", name, "\", left behind by a conversion that was cut off"));
        }
    }
}

void DestinationFile::createTemporary(const std::vector<std::string>& sources) {
    static std::atomic<unsigned> number{0};
    for (;;) {
        mTemporary =
            joinPath(mFolder, temporaryName(nameOf(mDestination), currentProcessId(), ++number));
        if (!LiveTemporaries::instance().add(mTemporary)) {
            throw Stopped{};
        }
        int error = OsFile::createNew(mTemporary, mFile);
        if (error == 0) {
            error = identifyTemporary(sources);
        }
        if (error == 0) {
            return;
        }
        mFile.close();
        LiveTemporaries::instance().remove(mTemporary);
        if (error != EEXIST) {
            fail(error, "creating it");
        }
    }
}

int DestinationFile::identifyTemporary(const std::vector<std::string>& sources) {
    if (const int error = mFile.state(mIdentity); error != 0) {
        return error;
    }
    LiveTemporaries::instance().identify(mTemporary, mIdentity);
    for (const std::string& source : sources) {
        if (const int error = mFile.narrowPermissions(source); error != 0) {
            return error;
        }
    }
    return 0;
}

int DestinationFile::onWrite(void* self, std::uint8_t* data, int size) noexcept {
    auto& file = *static_cast<DestinationFile*>(self);
    if (file.mStop.isRaised()) {
        return AVERROR_EXIT;
    }
    if (file.mPosition == 0) {
        putMark({data, static_cast<std::size_t>(size)});
    }
    if (file.mError == 0) {
        file.mError = file.note(data, size);
    }
    if (file.mError == 0) {
        file.mError = file.mFile.writeAt(file.mPosition, data, static_cast<std::size_t>(size));
    }
    if (file.mError != 0) {
        return AVERROR(file.mError);
    }
    file.mPosition += static_cast<std::uint64_t>(size);
    file.mSize = std::max(file.mSize, file.mPosition);
    file.pushOutWritten();
    return file.mError == 0 ? size : AVERROR(file.mError);
}

int DestinationFile::note(const std::uint8_t* data, int size) noexcept {
    try {
        mFrame.note(mPosition, {data, static_cast<std::size_t>(size)});
        return 0;
    } catch (const std::bad_alloc&) {
        return ENOMEM;
    }
}

AVIOContext* DestinationFile::beginMove() {
    mFrame.beginMove();
    mMoved.emplace(mFile, mSize, mStop);
    return mMoved->io();
}

void DestinationFile::pushOutWritten() {
    while (mError == 0 && mSize - mPushedOut >= kWriteBackStep) {
        mError = mFile.startWriteBack(mPushedOut, kWriteBackStep);
        if (mError == 0 && mPushedOut >= kMostUnwritten) {
            mError = mFile.awaitWriteBack(mPushedOut - kMostUnwritten, kWriteBackStep);
        }
        mPushedOut += kWriteBackStep;
    }
}

std::int64_t DestinationFile::onSeek(void* self, std::int64_t offset, int whence) noexcept {
    auto& file = *static_cast<DestinationFile*>(self);
    return seekWithin(file.mSize, file.mPosition, offset, whence);
}

bool isOutOfSpace(int error) {
#ifdef EDQUOT // MinGW's C library knows no quota
    if (error == EDQUOT) {
        return true;
    }
#endif
    return error == ENOSPC;
}

void DestinationFile::throwIfFailed() const {
    if (mError != 0) {
        fail(mError, "writing it");
    }
}

void DestinationFile::fail(int error, const char* doing) const {
    ErrorCode code = ErrorCode::WriteFailed;
    if (isOutOfSpace(error)) {
        code = ErrorCode::DiskFull;
    } else if (error == EACCES || error == EPERM || error == EROFS) {
        code = ErrorCode::DestinationNotWritable;
    } else if (error == ENOENT || error == ENOTDIR) {
        code = ErrorCode::DestinationFolderMissing;
    }
    throw Failure(code, text("Destination \"", mDestination, "\" failed while ", doing, ": ",
                             systemErrorText(error)));
}

void DestinationFile::closeDurably() {
    throwIfFailed();
    // From here on every change shows. Where it cannot, no state counts as the one that was closed.
    const bool showsChanges = mFile.backdate() == 0;
    if (const int error = mFile.state(mClosedState); error != 0) {
        fail(error, "looking at it");
    }
    mClosedState.size = showsChanges ? mClosedState.size : UINT64_MAX;
    if (const int error = mFile.syncToDisk(); error != 0) {
        fail(error, "writing it to the disk");
    }
    if (const int error = OsFile::openInUse(mTemporary, mHold); error != 0) {
        fail(error, "opening it again");
    }
    if (const int error = mFile.close(); error != 0) {
        fail(error, "closing it");
    }
}

void DestinationFile::commit() {
    // In use until it has its name: nobody else takes it for a leftover meanwhile.
    const int error = LiveTemporaries::instance().commit(mTemporary, mDestination, mIsReplacing);
    if (error == ECANCELED) {
        throw Stopped{};
    }
    if (error == EEXIST) {
        throw Failure(ErrorCode::DestinationAppeared,
                      text("A file came to \"", mDestination,
                           "\" during the conversion; it is left as it is"));
    }
    if (error != 0) {
        fail(error, "renaming it into place");
    }
    FileState placed;
    if (stateOf(mDestination, placed) != 0 || !placed.isSameFileAs(mIdentity)) {
        throw Failure(ErrorCode::WriteFailed,
                      text("Destination \"", mDestination, "\" is not the file that was written"));
    }
    if (const int unsynced = syncFolder(mFolder); unsynced != 0) {
        // Complete and in place, but a power cut now may bring the older name back.
        throw Failure(ErrorCode::WriteFailed,
                      text("The folder \"", mFolder,
                           "\" could not be written to the disk: ", systemErrorText(unsynced)));
    }
    mHold.close();
}

} // namespace zelcore
