#pragma once

#include <string>
#include <variant>
#include <vector>

namespace launcher {

/// A sentence that says why the paths can not be written as one argument.
struct NotExpressible {
    std::string sentence;
};

/// Writes paths as the one source argument that recordconverter::expandSourceList reads: a single
/// path as it is, several as what they have in common at their beginning and a name for each. Its
/// form has no escape: '|' is in no path, ':' only in what the paths have in common.
std::variant<std::string, NotExpressible> encodeSourceList(const std::vector<std::string>& paths);

} // namespace launcher
