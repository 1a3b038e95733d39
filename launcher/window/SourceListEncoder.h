#pragma once

#include <string>
#include <vector>

namespace launcher {

/// Writes paths as the one source argument that recordconverter::expandSourceList reads: a single
/// path as it is, several as what they have in common at their beginning and a name for each. Its
/// form has no escape: no path may hold '|', and ':' only within what they have in common.
std::string encodeSourceList(const std::vector<std::string>& paths);

} // namespace launcher
