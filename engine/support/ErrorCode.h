#pragma once

#include <cstdint>

namespace zelcore {

/// The engine's own error numbers, as OnError and the start entries hand them out. Each is a
/// failure in the contract's sense, in 0x4E20 to 0x4EFF. docs/engine-contract.md lists them for
/// readers.
enum class ErrorCode : std::int32_t {
    SourceMissing = 20001,
    SourceNotAFile = 20002,
    SourceNotReadable = 20003,
    SourceEmpty = 20004,
    NotARecording = 20005,
    SourceTruncated = 20006,
    SourceDamaged = 20007,
    SourceChanged = 20008,
    SourceReadFailed = 20009,
    NothingToConvert = 20010,
    UnsupportedCodec = 20011,
    ContentMissing = 20012,
    SourceEncrypted = 20013,

    DestinationIsSource = 20021,
    DestinationFolderMissing = 20022,
    DestinationNotWritable = 20023,
    DestinationNotAFile = 20024,
    DiskFull = 20025,
    WriteFailed = 20026,
    VerificationFailed = 20027,
    DestinationAppeared = 20028,

    InvalidArgument = 20041,
    Busy = 20042,
    OutOfMemory = 20043,
    InternalError = 20044,
};

} // namespace zelcore
