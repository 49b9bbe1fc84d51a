#include "cleanup/window/AlertText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

constexpr std::size_t mostLines = 12; // twice as many if the words break badly
constexpr const char* ellipsis = "…";

/// The start of the first character at or after `index`; the null character at the end counts as one.
std::size_t characterAt(const std::string& text, std::size_t index) {
    while ((static_cast<unsigned char>(text[index]) & 0xc0) == 0x80)
        ++index;
    return index;
}

std::string withoutMiddle(const std::string& text, std::size_t keptBytes) {
    const std::size_t head = characterAt(text, keptBytes - keptBytes / 2);
    const std::size_t tail = characterAt(text, text.size() - keptBytes / 2);
    return text.substr(0, head) + ellipsis + text.substr(tail);
}

std::string elided(const std::string& text, double width, const TextWidth& widthOf) {
    if (widthOf(text) <= width)
        return text;
    std::size_t fits = 0;
    for (std::size_t tooMany = text.size(); fits + 1 < tooMany;) {
        const std::size_t kept = (fits + tooMany) / 2;
        (widthOf(withoutMiddle(text, kept)) <= width ? fits : tooMany) = kept;
    }
    return withoutMiddle(text, fits);
}

/// The end of the word that begins at `begin`: at a space, or after a slash, where a line may break.
std::size_t endOfWord(std::string_view text, std::size_t begin) {
    const auto isLetter = [](char byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); };
    std::size_t end = begin + 1;
    while (end < text.size() && text[end] != ' ' && !(text[end - 1] == '/' && isLetter(text[end])))
        ++end;
    return std::min(end, text.size());
}

std::string withElidedWords(const std::string& line, double width, const TextWidth& widthOf) {
    std::string result;
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = line[begin] == ' ' ? begin + 1 : endOfWord(line, begin);
        result += elided(line.substr(begin, end - begin), width, widthOf);
        begin = end;
    }
    return result;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 1) {
        end = text.find('\n', begin);
        lines.push_back(text.substr(begin, end - begin));
    }
    return lines;
}

} // namespace

std::string fittedInformativeText(const AlertContent& alert, double width, const TextWidth& widthOf) {
    const std::string& text = alert.informativeText;
    const std::size_t blankLine = text.rfind("\n\n");
    if (blankLine == std::string::npos)
        return text;
    auto lines = linesOf(text.substr(0, blankLine));
    if (lines.size() > mostLines) {
        lines.resize(mostLines);
        lines.back() = ellipsis;
    }
    const std::size_t linesEach = mostLines / lines.size();
    const double longest = width * static_cast<double>(linesEach);
    std::string result;
    for (const std::string& line : lines)
        result +=
            (&line == &lines.front() ? "" : "\n") + withElidedWords(elided(line, longest, widthOf), width, widthOf);
    return result + text.substr(blankLine);
}

} // namespace vantry
