#include "launcher/usage/Options.h"

#include "launcher/Texts.h"
#include "launcher/usage/OptionTable.h"
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
        while (mNext < mArguments.size() && !mError && !mAnswer) {
            const std::string& argument = mArguments[mNext++];
            if (!tarn::platform::isValidUtf8(argument)) {
                mError =
                    "The argument " + inQuotes(argument) + " is not valid UTF-8: rename the file.";
            } else if (mOptionsEnded || argument.size() < 2 || argument.front() != '-') {
                mPaths.push_back(argument);
            } else if (argument == "--") {
                mOptionsEnded = true;
            } else {
                takeOption(argument == "-h" ? "--help" : argument);
            }
        }
        return mAnswer && !mError ? *mAnswer : finish();
    }

private:
    void takeOption(const std::string& argument) {
        const std::size_t equals = argument.find('=');
        const bool isJoined = equals != std::string::npos;
        const OptionEntry* const option = findOption(argument.substr(0, equals));
        if (option == nullptr || (isJoined && option->value.empty())) {
            mError = "The option " + inQuotes(argument) + " is unknown.";
        } else if (option->value.empty()) {
            apply(option->id, {});
        } else if (isJoined) {
            applyChecked(*option, argument.substr(equals + 1));
        } else {
            applyChecked(*option, mNext < mArguments.size() ? mArguments[mNext++] : "");
        }
    }

    void applyChecked(const OptionEntry& option, const std::string& value) {
        const std::string name(option.name);
        if (option.takesWord() && !isOneOf(option.value, value)) {
            std::string words(option.value);
            for (std::size_t bar = 0; (bar = words.find('|')) != std::string::npos;) {
                words.replace(bar, 1,
                              words.find('|', bar + 1) == std::string::npos ? " or " : ", ");
            }
            mError = "The option " + name + " takes " + words + ".";
        } else if (value.empty() || !tarn::platform::isValidUtf8(value)) {
            mError = "The option " + name + " takes " +
                     (option.value == "FOLDER" ? "the path of a folder." : "a number.");
        } else {
            apply(option.id, value);
        }
    }

    void apply(OptionId id, const std::string& value) {
        switch (id) {
            case OptionId::NoWindow:
                mOptions.window = false;
                break;
            case OptionId::Each:
                mOptions.each = true;
                break;
            case OptionId::To:
                mOptions.folder = value;
                break;
            case OptionId::Overwrite:
                mOptions.overwrite = true;
                break;
            case OptionId::DeleteSources:
                mOptions.deleteSources = true;
                break;
            case OptionId::Quality:
                mOptions.quality = value;
                break;
            case OptionId::FastStart:
                mOptions.fastStart = true;
                break;
            case OptionId::Json:
                mOptions.json = true;
                break;
            case OptionId::Theme:
                mOptions.theme = value == "dark" ? Theme::Dark : Theme::Light;
                break;
            case OptionId::EngineFolder:
                mOptions.engineFolder = value;
                break;
            case OptionId::ArchiveLogs:
                mArchiveDestination = value;
                break;
            case OptionId::Explain:
                mAnswer = ExplanationWanted{value};
                break;
            case OptionId::Help:
                mAnswer = HelpWanted{};
                break;
            case OptionId::Version:
                mAnswer = VersionWanted{};
                break;
        }
    }

    CommandLine finish() {
        if (!mError && !mArchiveDestination.empty()) {
            if (mPaths.empty()) {
                return ArchiveWanted{mArchiveDestination};
            }
            mError = "The option --archive-logs converts nothing: give no recording with it.";
        }
        if (!mError) {
            mError = objectionToPaths();
        }
        if (mError) {
            // Whoever asks for it wants to hear of every mistake, also of one that stands before
            // it.
            return UsageError{*mError, std::ranges::find(mArguments, "--json") != mArguments.end()};
        }
        if (!mOptions.each && mPaths.size() > 1) {
            mOptions.destination = mPaths.back();
            mPaths.pop_back();
        }
        mOptions.sources = mPaths;
        mOptions.window = mOptions.window && !mOptions.each && !mOptions.json;
        return mOptions;
    }

    std::optional<std::string> objectionToPaths() const {
        if (mPaths.empty()) {
            return "No recording is given.";
        }
        if (std::ranges::find(mPaths, "") != mPaths.end()) {
            return "An empty text is no path.";
        }
        if (!mOptions.folder.empty() && !mOptions.each) {
            return "The option --to goes with --each: without it give the destination last.";
        }
        return std::nullopt;
    }

    const std::vector<std::string>& mArguments;
    std::size_t mNext = 0;
    bool mOptionsEnded = false;
    std::optional<std::string> mError;
    std::optional<CommandLine> mAnswer; ///< to a question, whatever follows
    std::vector<std::string> mPaths;
    std::string mArchiveDestination;
    Options mOptions;
};

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
    return Parser(arguments).parse();
}

} // namespace launcher
