// A library to sign and to load. With RECORD_CONVERTER_NEIGHBOUR it needs another one.
#include <windows.h>

#ifdef RECORD_CONVERTER_NEIGHBOUR
extern "C" __declspec(dllimport) int neighbourAnswer();
extern "C" __declspec(dllexport) int pluginAnswer() {
    return neighbourAnswer() + 1;
}
#else
extern "C" __declspec(dllexport) int neighbourAnswer() {
    return 41;
}
#endif

/// Leaves a mark in the process, by which a test sees that code of the library ran.
BOOL WINAPI DllMain(HINSTANCE /*instance*/, DWORD reason, LPVOID /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        SetEnvironmentVariableW(L"RECORD_CONVERTER_TEST_LIBRARY", L"ran");
    }
    return TRUE;
}
