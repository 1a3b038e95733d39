// The binary interfaces seen as another compiler sees them: tables of plain functions. The fake
// engine in tests/support calls and is called the same way from outside the program.

#include "recordconverter/MediaConverter.h"

#include <gtest/gtest.h>

namespace recordconverter {
namespace {

class Session : public MediaConverter {
public:
    Session() : MediaConverter("", {}, "out.mp4") {}
    ~Session() override { ++destroyed; }
    void loadEngine() override { calls += "load "; }
    void startConvert(const std::vector<std::string>&, const std::string& destination,
                      std::uint32_t param1, std::uint32_t param2) override {
        calls += "start " + destination + std::to_string(param1) + std::to_string(param2) + " ";
    }
    void OnProgress(float percent) override { calls += std::to_string(percent) + " "; }
    void OnError(std::int32_t code) override { calls += std::to_string(code) + " "; }

    std::string calls;
    static inline int destroyed = 0;
};

struct SessionTable {
    void* (*destructorEntry)(void*, unsigned int);
    void (*onProgress)(void*, float);
    void (*onError)(void*, std::int32_t);
    void (*loadEngine)(void*);
    void (*startConvert)(void*, const std::vector<std::string>&, const std::string&, std::uint32_t,
                         std::uint32_t);
};

template <typename Table>
const Table& tableOf(const void* object) {
    return **static_cast<const Table* const*>(object);
}

TEST(InterfaceLayout, ASessionHasTheSinksSlotsAndThenItsOwnWithNoDestructorAmongThem) {
    Session session;
    void* const sink = static_cast<zel::IZelMediaConverterSink*>(&session);
    EXPECT_EQ(sink, &session);
    const auto& table = tableOf<SessionTable>(sink);
    EXPECT_EQ(table.destructorEntry(sink, 1), nullptr);
    EXPECT_EQ(Session::destroyed, 0);
    table.onProgress(sink, 12.5F);
    table.onError(sink, -7);
    table.loadEngine(sink);
    table.startConvert(sink, {}, "d", 3, 4);
    EXPECT_EQ(session.calls, "12.500000 -7 load start d34 ");
}

TEST(InterfaceLayout, ASessionIsDestroyedWholeThroughItsOwner) {
    Session::destroyed = 0;
    { const std::unique_ptr<MediaConverter> owner = std::make_unique<Session>(); }
    EXPECT_EQ(Session::destroyed, 1);
}

} // namespace
} // namespace recordconverter
