#include "launcher/usage/Manual.h"

#include <cstdio>
#include <fstream>

/// Writes the files that are installed beside the program: MANUAL BASH ZSH, their paths.
int main(int argc, char** argv) {
    const std::string texts[] = {launcher::manualPage(), launcher::bashCompletion(),
                                 launcher::zshCompletion()};
    if (argc != 1 + static_cast<int>(std::size(texts))) {
        return 2;
    }
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        std::ofstream file(argv[i + 1], std::ios::binary);
        file << texts[i] << std::flush;
        if (!file) {
            std::perror(argv[i + 1]);
            return 1;
        }
    }
    return 0;
}
