#include "platform/Registry.h"
#include "platform/windows/RegistrySandbox.h"

namespace tarn::platform {
namespace {

using testing::RegistrySandbox;

constexpr const wchar_t* kKey = L"Software\\Quorell Tarn Native";
constexpr const wchar_t* kValue = L"OriginalInstallPath";

TEST(Registry, TakesATextAsItStandsWhateverItsLengthAndEnd) {
    const RegistrySandbox sandbox;
    SetEnvironmentVariableW(L"RC_TEST_FOLDER", L"C:\\expanded");
    const auto stored = [](const std::wstring& text, DWORD type = REG_SZ) {
        RegistrySandbox::setText(HKEY_CURRENT_USER, kKey, kValue, text, type);
        return registryText(RegistryRoot::CurrentUser, RegistryView::Default, kKey, kValue);
    };
    const std::wstring longPath = L"C:\\Größe\\" + std::wstring(3000, L'x');
    EXPECT_EQ(stored(longPath), longPath);
    EXPECT_EQ(stored(std::wstring(L"C:\\two NULs\0\0", 13)), L"C:\\two NULs");
    EXPECT_EQ(stored(L""), L"");
    EXPECT_EQ(stored(L"%RC_TEST_FOLDER%\\x", REG_EXPAND_SZ), L"C:\\expanded\\x");
    EXPECT_EQ(stored(L"number", REG_DWORD), std::nullopt);
    EXPECT_EQ(registryText(RegistryRoot::LocalMachine, RegistryView::Native64, kKey, kValue),
              std::nullopt);
}

TEST(Registry, ReadsNumbersThatFitFourBytes) {
    const RegistrySandbox sandbox;
    const auto stored = [](DWORD type, std::uint64_t number, std::size_t size) {
        RegistrySandbox::setBytes(HKEY_LOCAL_MACHINE, kKey, L"policy", type, &number, size);
        return registryNumber(RegistryRoot::LocalMachine, kKey, L"policy");
    };
    EXPECT_EQ(registryNumber(RegistryRoot::LocalMachine, kKey, L"policy"), std::nullopt);
    EXPECT_EQ(stored(REG_DWORD, 0xFEDCBA98, 4), 0xFEDCBA98U);
    EXPECT_EQ(stored(REG_BINARY, 1, 1), 1U) << "the rest of the buffer is zero";
    EXPECT_EQ(stored(REG_QWORD, 1, 8), std::nullopt);
}

} // namespace
} // namespace tarn::platform
