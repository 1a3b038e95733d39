#pragma once

#include <string>
#include <vector>

class QQmlEngine;

namespace recordconverter::app {

/// Before the application object exists: keeps every other Qt of the machine out and, given a
/// runtime folder (argument 1), points Qt at its plugins and QML modules.
void prepareQtEnvironment(const std::vector<std::string>& arguments);

/// Qt adds folders of its own to what was set: the program's when the application object is made,
/// the installation's when a QML engine is. Given a runtime folder, these two take them out again.
void limitLibraryPaths(const std::vector<std::string>& arguments);
void limitImportPaths(QQmlEngine& engine, const std::vector<std::string>& arguments);

/// Gives the environment back what prepareQtEnvironment took and changed, so that programs which
/// the notice opens do not inherit it. Once the window has loaded, when Qt has read all of it, and
/// before other threads may look at the environment.
void restoreEnvironment();

/// One line that records what Qt will see.
void logQtEnvironment();

} // namespace recordconverter::app
