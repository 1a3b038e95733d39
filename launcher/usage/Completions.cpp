#include "launcher/usage/Manual.h"
#include "launcher/usage/Meanings.h"
#include "launcher/usage/OptionTable.h"

#include <algorithm>

namespace launcher {
namespace {

/// What may follow an option, with blanks between.
std::string wordsFor(const OptionEntry& option) {
    std::string words;
    if (option.takesWord()) {
        words = option.value;
        std::ranges::replace(words, '|', ' ');
    } else if (option.id == OptionId::Explain) {
        for (const auto& meanings : {statusMeanings(), errorMeanings()}) {
            for (const Meaning& each : meanings) {
                words += (words.empty() ? "" : " ") + std::to_string(each.number);
            }
        }
    }
    return words;
}

/// For one of zsh's specifications in single quotes.
std::string quoted(std::string_view text) {
    std::string shown;
    for (const char c : text) {
        if (c == '\'') {
            shown += "'\\''";
        } else {
            shown += c == '[' || c == ']' || c == ':' ? std::string("\\") + c : std::string(1, c);
        }
    }
    return shown;
}

} // namespace

std::string bashCompletion() {
    std::string options;
    std::string cases;
    for (const OptionEntry& option : allOptions()) {
        options += std::string(option.name) + " ";
        if (option.value.empty()) {
            continue;
        }
        const std::string words = wordsFor(option);
        cases += "        " + std::string(option.name) + ") mapfile -t COMPREPLY < <(compgen " +
                 (words.empty() ? "-d" : "-W '" + words + "'") + " -- \"$word\"); " +
                 (words.empty() ? "compopt -o filenames; " : "") + "return ;;\n";
    }
    return R"(# bash completion for record-converter

_record_converter() {
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]}
    # An option and its value may be joined: --theme=dark
    if [[ $word == = ]]; then
        word=
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    COMPREPLY=()
    case $option in
)" + cases +
           R"(    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W ')" +
           options + R"(' -- "$word")
    fi
}
complete -o default -F _record_converter record-converter
)";
}

std::string zshCompletion() {
    std::string text = "#compdef record-converter\n\n_arguments \\\n";
    for (const OptionEntry& option : allOptions()) {
        const std::string words = wordsFor(option);
        text += "    '" + std::string(option.name) + (option.value.empty() ? "[" : "=[") +
                quoted(option.meaning) + "]" +
                (option.value.empty() ? ""
                 : words.empty()      ? ":folder:_files -/"
                                      : ":value:(" + words + ")") +
                "' \\\n";
    }
    return text + "    '*:recording:_files'\n";
}

} // namespace launcher
