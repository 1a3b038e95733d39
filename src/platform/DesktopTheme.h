#pragma once

namespace tarn::platform {

/// True when the user's desktop asks programs for dark colours. False when it does not, and when
/// nobody answers: Linux asks the desktop's portal and waits half a second for its answer.
bool isDesktopDark();

} // namespace tarn::platform
