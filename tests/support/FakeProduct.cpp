// A product library for tests of the launcher: says what it was called with, then does what the
// variable FAKE_PRODUCT says: "return N", "hold", or, separated by blanks, "write" the destination
// and "delete" its source, and then exit.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

extern "C" int TarnEntryPoint(int argc, wchar_t** argv) {
    for (int i = 0; i < argc; ++i) {
        const std::u8string text = std::filesystem::path(argv[i]).u8string();
        std::printf("%d:%s\n", i, reinterpret_cast<const char*>(text.c_str()));
    }
    std::printf("%s\n", argv[argc] == nullptr ? "ended" : "not ended");
    const char* const value = std::getenv("FAKE_PRODUCT");
    const std::string order = value != nullptr ? value : "exit";
    std::printf("source %s\n", std::filesystem::exists(argv[3]) ? "there" : "missing");
    std::fflush(stdout);
    if (order.starts_with("return ")) {
        return std::atoi(order.c_str() + 7);
    }
    if (order.find("write") != std::string::npos) {
        std::ofstream(std::filesystem::path(argv[4])) << "film";
    }
    if (order.find("delete") != std::string::npos) {
        std::filesystem::remove(argv[3]);
    }
    if (order == "hold") {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
    std::exit(0);
}
