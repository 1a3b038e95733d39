#pragma once

#include <string>
#include <vector>

namespace benchmarks {

/// Waits until the file's contents are on the disk. Throws on failure.
void syncFile(const std::string& path);

/// Waits until nothing that earlier runs wrote is still on its way to the disk.
void settleDisk();

/// Reads the file once, so that every run finds it in the page cache.
void warmUp(const std::string& path);

/// For each text, the lines of the file that hold it.
std::vector<long> countLines(const std::string& path, const std::vector<std::string>& texts);

} // namespace benchmarks
