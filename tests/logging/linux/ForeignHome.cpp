#include <cstdlib>

/// Runs the tests as sudo would, in a home folder whose name is no UTF-8.
[[maybe_unused]] static const int environment =
    setenv("HOME", "/home/J\xF6rg M\xFCller", 1) + setenv("SUDO_USER", "games", 1);
