#include "support/DiskFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace benchmarks {

void syncFile(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0 || fsync(descriptor) != 0) {
        throw std::runtime_error(path + ": " + std::strerror(errno));
    }
    close(descriptor);
}

void settleDisk() {
    sync();
}

void warmUp(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> buffer(std::size_t{1} << 20);
    while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()))) {
    }
}

std::vector<long> countLines(const std::string& path, const std::vector<std::string>& texts) {
    std::ifstream file(path, std::ios::binary);
    std::vector<long> counts(texts.size(), 0);
    for (std::string line; std::getline(file, line);) {
        for (std::size_t text = 0; text < texts.size(); ++text) {
            counts[text] += line.find(texts[text]) != std::string::npos ? 1 : 0;
        }
    }
    return counts;
}

} // namespace benchmarks
