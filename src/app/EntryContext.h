#pragma once

#include <memory>
#include <string>
#include <vector>

namespace recordconverter {
class ConverterLog;
}

namespace recordconverter::app {

class LocalizationStrings;

/// What a run owns; lives on the stack of the entry point. Members are released in the reverse of
/// their order here.
struct EntryContext {
    /// The caller's argument vector in UTF-8: 0 the caller's program, 1 the runtime folder, 2 not
    /// read, 3 the sources (see SourceList.h), 4 the destination, 5 the theme, "2" for dark.
    std::vector<std::string> arguments;
    std::shared_ptr<LocalizationStrings> localizationStrings;
    std::shared_ptr<ConverterLog> converterLog;
};

} // namespace recordconverter::app
