#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace recordconverter {

/// Expands a source argument into paths. "path" is itself. "template|name:name" gives one path for
/// each name: the template up to its last '.', the name, the template from its last '.' on (nothing
/// when that is its last character). Three or more parts between '|' give none.
/// "C:\rec\part.dat|a:b" is "C:\rec\parta.dat" and "C:\rec\partb.dat".
std::vector<std::string> expandSourceList(std::string_view argument);

} // namespace recordconverter
