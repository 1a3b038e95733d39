#pragma once

#include "recordconverter/IMediaConverterCallback.h"
#include "recordconverter/NotificationHelper.h"
#include "zel/EngineContract.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace recordconverter {

/// One conversion: starts the engine, passes its events on to the observers and, at 100 percent,
/// deletes the source files. Paths are UTF-8.
///
/// It is the engine's sink, so its table continues the sink's: 0 destructor entry (a placeholder
/// that does nothing, the engine owns no sink), 1 OnProgress, 2 OnError, 3 loadEngine,
/// 4 startConvert. The C++ destructor is virtual for the owner's sake and therefore declared last:
/// the Itanium ABI gives it two slots here, and they must not come before the others.
class MediaConverter : public zel::IZelMediaConverterSink,
                       public NotificationHelper<IMediaConverterCallback>,
                       public std::enable_shared_from_this<MediaConverter> {
public:
    /// `sources` are what is deleted at 100 percent; an empty list deletes nothing.
    MediaConverter(std::string engineFolder, std::vector<std::string> sources,
                   std::string destination);

    void OnProgress(float percent) override;
    void OnError(std::int32_t code) override;

    /// Binds the engine library and stores its factory; a failure leaves the factory null.
    virtual void loadEngine() = 0;

    /// Starts the engine, on the thread that owns the session. Success reaches the observers as
    /// onConvertStarted before this returns, failure only the log. The two parameters go to the
    /// engine as they are.
    virtual void startConvert(const std::vector<std::string>& sources,
                              const std::string& destination, std::uint32_t engineParam1,
                              std::uint32_t engineParam2);

    ~MediaConverter() override = default;

protected:
    const std::string& engineFolder() const { return mEngineFolder; }
    void setFactory(zel::CreateMediaConverterFunction entryPoint) { mFactory = entryPoint; }
    zel::CreateMediaConverterFunction factory() const { return mFactory; }

private:
    template <typename Call>
    void notifyGuarded(const Call& call);
    bool createInstance();
    /// On the engine's thread: throws nothing.
    void deleteSources();

    std::string mSpareText;
    std::string mEngineFolder;
    std::vector<std::string> mSources;
    std::string mDestination;
    zel::CreateMediaConverterFunction mFactory = nullptr;
    /// Never released: it ends when the engine library is unloaded.
    zel::IZelMediaConverter* mInstance = nullptr;
};

} // namespace recordconverter
