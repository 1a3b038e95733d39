#include "launcher/Options.h"

#include "launcher/Texts.h"
#include "platform/Text.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace launcher {
namespace {

class Parser {
public:
    explicit Parser(const std::vector<std::string>& arguments) : mArguments(arguments) {}

    CommandLine parse() {
        while (mNext < mArguments.size() && !mError) {
            const std::string& argument = mArguments[mNext++];
            if (!tarn::platform::isValidUtf8(argument)) {
                mError =
                    "The argument " + inQuotes(argument) + " is not valid UTF-8: rename the file.";
            } else if (mOptionsEnded || argument.size() < 2 || argument.front() != '-') {
                mPaths.push_back(argument);
            } else if (argument == "--") {
                mOptionsEnded = true;
            } else if (argument == "--help" || argument == "-h") {
                return HelpWanted{};
            } else if (argument == "--version") {
                return VersionWanted{};
            } else {
                takeOption(argument);
            }
        }
        return finish();
    }

private:
    void takeOption(const std::string& argument) {
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (equals != std::string::npos) {
            mInlineValue = argument.substr(equals + 1);
        }
        if (name == "--theme") {
            takeTheme();
        } else if (name == "--engine-folder") {
            takeFolder(name, mOptions.engineFolder);
        } else if (name == "--archive-logs") {
            takeFolder(name, mArchiveDestination);
        } else if (mInlineValue) {
            mError = "The option " + inQuotes(argument) + " is unknown.";
        } else if (name == "--no-window") {
            mOptions.window = false;
        } else if (name == "--overwrite") {
            mOptions.overwrite = true;
        } else if (name == "--delete-sources") {
            mOptions.deleteSources = true;
        } else {
            mError = "The option " + inQuotes(argument) + " is unknown.";
        }
        mInlineValue.reset();
    }

    std::optional<std::string> takeValue() {
        if (mInlineValue) {
            return mInlineValue;
        }
        if (mNext == mArguments.size()) {
            return std::nullopt;
        }
        return mArguments[mNext++];
    }

    void takeTheme() {
        const std::optional<std::string> value = takeValue();
        if (value == "light" || value == "dark") {
            mOptions.theme = value == "dark" ? Theme::Dark : Theme::Light;
        } else {
            mError = "The option --theme takes light or dark.";
        }
    }

    void takeFolder(const std::string& option, std::string& folder) {
        const std::optional<std::string> value = takeValue();
        if (!value || value->empty() || !tarn::platform::isValidUtf8(*value)) {
            mError = "The option " + option + " takes the path of a folder.";
        } else {
            folder = *value;
        }
    }

    CommandLine finish() {
        if (!mError && !mArchiveDestination.empty()) {
            if (mPaths.empty()) {
                return ArchiveWanted{mArchiveDestination};
            }
            mError = "The option --archive-logs converts nothing: give no recording with it.";
        }
        if (!mError && mPaths.size() < 2) {
            mError = mPaths.empty() ? "No recording and no destination are given."
                                    : "No destination is given after " + inQuotes(mPaths[0]) + ".";
        }
        if (!mError && std::ranges::find(mPaths, "") != mPaths.end()) {
            mError = "An empty text is no path.";
        }
        if (mError) {
            return UsageError{*mError};
        }
        mOptions.destination = mPaths.back();
        mPaths.pop_back();
        mOptions.sources = mPaths;
        return mOptions;
    }

    const std::vector<std::string>& mArguments;
    std::size_t mNext = 0;
    bool mOptionsEnded = false;
    std::optional<std::string> mInlineValue;
    std::optional<std::string> mError;
    std::vector<std::string> mPaths;
    std::string mArchiveDestination;
    Options mOptions;
};

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    return Parser(arguments).parse();
}

} // namespace launcher
