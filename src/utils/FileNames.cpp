#include "utils/FileNames.h"

#include "platform/KnownFolders.h"

#include <algorithm>

namespace tarn::fileNames {
namespace {

constexpr std::string_view kBothSeparators = "\\/";

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isHexadecimal(char character) {
    return isDigit(character) || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

/// Reads a text from its beginning; what it takes is gone from the front.
class Reader {
public:
    explicit Reader(std::string_view text) : mRest(text) {}

    bool take(char character) {
        return takeWhen(1, [&](char c) { return c == character; });
    }
    bool takeDigit() { return takeWhen(1, isDigit); }
    bool takeHexadecimal(std::size_t count) { return takeWhen(count, isHexadecimal); }

    /// "(", up to two digits or ")", ")": the longest that fits.
    bool takeCounter() {
        for (std::size_t inside : {2U, 1U, 0U}) {
            Reader attempt = *this;
            const auto fits = [](char c) { return isDigit(c) || c == ')'; };
            if (attempt.take('(') && attempt.takeWhen(inside, fits) && attempt.take(')')) {
                *this = attempt;
                return true;
            }
        }
        return false;
    }

    std::size_t left() const { return mRest.size(); }

private:
    bool takeWhen(std::size_t count, auto condition) {
        if (mRest.size() < count || !std::ranges::all_of(mRest.substr(0, count), condition)) {
            return false;
        }
        mRest.remove_prefix(count);
        return true;
    }

    std::string_view mRest;
};

/// Length of the identifier suffix that begins the text, 0 for none.
std::size_t identifierLength(std::string_view text) {
    Reader reader(text);
    if (!reader.take('_')) {
        return 0;
    }
    reader.take('{');
    for (bool first = true; const std::size_t digits : {8U, 4U, 4U, 4U, 12U}) {
        if ((!first && !reader.take('-')) || !reader.takeHexadecimal(digits)) {
            return 0;
        }
        first = false;
    }
    if (reader.takeDigit()) {
        reader.takeDigit();
    }
    reader.takeCounter();
    reader.take('}');
    return text.size() - reader.left();
}

/// Windows: "C:\" or "\"; Linux: "/".
std::size_t rootLength(std::string_view path) {
    if (path.size() >= 3 && path[1] == ':' && isSeparator(path[2]) && isSeparator('\\')) {
        return 3;
    }
    return !path.empty() && isSeparator(path.front()) ? 1 : 0;
}

} // namespace

std::string sanitize(std::string_view name) {
    std::string result(name);
    std::ranges::replace_if(
        result,
        [](char c) { return std::string_view(R"(\/:*?"<>|)").find(c) != std::string_view::npos; },
        '_');
    return result;
}

std::pair<std::string, std::string> splitExtension(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {std::string(name), {}};
    }
    return {std::string(name.substr(0, dot)), std::string(name.substr(dot))};
}

std::string withoutIdentifiers(std::string_view name) {
    std::string result;
    for (std::size_t position = 0; position < name.size();) {
        const std::size_t length = identifierLength(name.substr(position));
        if (length == 0) {
            result.push_back(name[position]);
        }
        position += std::max<std::size_t>(length, 1);
    }
    return result;
}

std::string directoryOf(std::string_view path) {
    const std::size_t separator = path.find_last_of(kBothSeparators);
    return std::string(path.substr(0, separator == std::string_view::npos ? 0 : separator + 1));
}

std::string nameOf(std::string_view path) {
    const std::size_t separator = path.find_last_of(kBothSeparators);
    return std::string(path.substr(separator == std::string_view::npos ? 0 : separator + 1));
}

bool isSeparator(char character) {
    return character == '/' || character == platform::pathSeparator();
}

std::string withoutTrailingSeparators(std::string_view path) {
    const std::size_t root = rootLength(path);
    while (path.size() > root && isSeparator(path.back())) {
        path.remove_suffix(1);
    }
    return std::string(path);
}

std::string parentOf(std::string_view path) {
    const std::size_t root = rootLength(path);
    std::size_t end = withoutTrailingSeparators(path).size();
    if (end <= root) {
        return {};
    }
    while (end > root && !isSeparator(path[end - 1])) {
        --end;
    }
    return withoutTrailingSeparators(path.substr(0, end));
}

std::string join(std::string_view folder, std::string_view name) {
    if (folder.empty()) {
        return std::string(name);
    }
    while (!folder.empty() && isSeparator(folder.back())) {
        folder.remove_suffix(1);
    }
    while (!name.empty() && isSeparator(name.front())) {
        name.remove_prefix(1);
    }
    return std::string(folder) + platform::pathSeparator() + std::string(name);
}

} // namespace tarn::fileNames
