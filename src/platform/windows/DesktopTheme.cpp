#include "platform/DesktopTheme.h"

#include "platform/Registry.h"

namespace tarn::platform {

bool isDesktopDark() {
    return registryNumber(RegistryRoot::CurrentUser,
                          L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                          L"AppsUseLightTheme") == 0U;
}

} // namespace tarn::platform
