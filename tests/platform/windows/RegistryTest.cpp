#include "platform/Registry.h"
#include "platform/windows/RegistrySandbox.h"

namespace tarn::platform {
namespace {

using testing::RegistrySandbox;

constexpr const wchar_t* kKey = L"Software\\Quorell Tarn Native";
constexpr const wchar_t* kValue = L"OriginalInstallPath";

std::optional<std::wstring> text(RegistryRoot root, RegistryView view = RegistryView::Default) {
    return registryText(root, view, kKey, kValue);
}

TEST(Registry, ReadsTextsOfEachRootAndView) {
    const RegistrySandbox sandbox;
    EXPECT_FALSE(text(RegistryRoot::CurrentUser));
    const std::wstring longPath = L"C:\\Größe\\" + std::wstring(3000, L'x');
    RegistrySandbox::setText(HKEY_CURRENT_USER, kKey, kValue, longPath);
    RegistrySandbox::setText(HKEY_LOCAL_MACHINE, kKey, kValue, L"D:\\Machine");
    EXPECT_EQ(text(RegistryRoot::CurrentUser), longPath);
    EXPECT_EQ(text(RegistryRoot::LocalMachine), L"D:\\Machine");
    EXPECT_EQ(text(RegistryRoot::LocalMachine, RegistryView::Native64), L"D:\\Machine");
}

TEST(Registry, TakesATextAsItStandsWhateverItsEnd) {
    const RegistrySandbox sandbox;
    const auto stored = [](const std::wstring& characters) {
        RegistrySandbox::setBytes(HKEY_CURRENT_USER, kKey, kValue, REG_SZ, characters.data(),
                                  characters.size() * sizeof(wchar_t));
        return text(RegistryRoot::CurrentUser);
    };
    EXPECT_EQ(stored(L"C:\\no NUL"), L"C:\\no NUL");
    EXPECT_EQ(stored(std::wstring(L"C:\\two NULs\0\0", 13)), L"C:\\two NULs");
    EXPECT_EQ(stored(L""), L"");
    SetEnvironmentVariableW(L"RC_TEST_FOLDER", L"C:\\expanded");
    RegistrySandbox::setText(HKEY_CURRENT_USER, kKey, kValue, L"%RC_TEST_FOLDER%\\x",
                             REG_EXPAND_SZ);
    EXPECT_EQ(text(RegistryRoot::CurrentUser), L"C:\\expanded\\x");
    RegistrySandbox::setNumber(HKEY_CURRENT_USER, kKey, kValue, 1);
    EXPECT_FALSE(text(RegistryRoot::CurrentUser));
}

TEST(Registry, ReadsNumbersThatFitFourBytes) {
    const RegistrySandbox sandbox;
    const auto number = [] { return registryNumber(RegistryRoot::LocalMachine, kKey, L"policy"); };
    EXPECT_FALSE(number());
    RegistrySandbox::setNumber(HKEY_LOCAL_MACHINE, kKey, L"policy", 0xFEDCBA98);
    EXPECT_EQ(number(), 0xFEDCBA98U);
    const std::uint8_t one = 1;
    RegistrySandbox::setBytes(HKEY_LOCAL_MACHINE, kKey, L"policy", REG_BINARY, &one, 1);
    EXPECT_EQ(number(), 1U) << "the rest of the buffer is zero";
    const std::uint64_t wide = 1;
    RegistrySandbox::setBytes(HKEY_LOCAL_MACHINE, kKey, L"policy", REG_QWORD, &wide, 8);
    EXPECT_FALSE(number());
    RegistrySandbox::setText(HKEY_LOCAL_MACHINE, kKey, L"policy", L"1 as a text");
    EXPECT_FALSE(number());
}

} // namespace
} // namespace tarn::platform
