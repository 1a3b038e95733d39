#pragma once

#include <string>

/// What is installed beside the program, made from the table of its options and the lists of
/// meanings. Written by a program of the build's own.
namespace launcher {

/// A page for man, section 1.
std::string manualPage();

std::string bashCompletion();
std::string zshCompletion();

} // namespace launcher
