#pragma once

#include "engine/job/ConversionJob.h"
#include "zel/IZelMediaConverter.h"

#include <memory>
#include <mutex>

namespace zelcore {

/// The instance behind CreateMediaConverter. The program never releases it; it starts one
/// conversion at a time.
class Converter : public zel::IZelMediaConverter {
public:
    explicit Converter(zel::IZelMediaConverterSink& sink) : mSink(sink) {}

    void reservedEntry0() override {}
    void reservedEntry1() override {}
    void reservedEntry2() override {}
    void reservedEntry3() override {}
    void reservedEntry4() override {}
    void reservedEntry5() override {}
    std::int32_t StartSingle(const char* source, const char* destination,
                             std::uint32_t engineParam1, std::uint32_t engineParam2) override;
    std::int32_t StartMultiple(const char* const* sources, std::uint64_t count,
                               const char* destination, std::uint32_t engineParam1,
                               std::uint32_t engineParam2) override;

private:
    std::int32_t start(const char* const* sources, std::uint64_t count, const char* destination);

    zel::IZelMediaConverterSink& mSink;
    std::mutex mMutex;
    std::shared_ptr<ConversionJob> mJob;
};

} // namespace zelcore
