#include "library_texts.h"

#include <optional>

#include "settings/reporter.h"

namespace moremate::ui {
namespace {

const char* Form(const TLibraryTextRow& row, int language) {
    return language == kPolish ? row.polish : row.ukrainian;
}

bool IsInfix(const TLibraryTextRow& row) {
    const std::string_view english = row.english;
    return english.starts_with(' ') && english.ends_with(' ');
}

bool IsEnding(const TLibraryTextRow& row) {
    return row.english[0] == ' ' && !IsInfix(row);
}

// The row with the longest English text that `message` starts with (`ending` false) or ends with
// (`ending` true), among the rows of that kind.
const TLibraryTextRow* LongestMatch(std::string_view message, bool ending) {
    const TLibraryTextRow* best = nullptr;
    size_t bestLength = 0;
    for (const TLibraryTextRow& row : LibraryTextTable()) {
        const std::string_view english = row.english;
        if (english.size() <= bestLength || (ending && !IsEnding(row))) continue;
        if (ending ? message.ends_with(english) : message.starts_with(english)) {
            best = &row;
            bestLength = english.size();
        }
    }
    return best;
}

std::string TranslatedLine(std::string_view line, int language);

// The message with the first known middle part it holds translated, as a number before it and a
// number after it are kept ("3 solution(s) found of the problem 12").
std::optional<std::string> TranslatedInfix(std::string_view message, int language) {
    for (const TLibraryTextRow& row : LibraryTextTable()) {
        const size_t at = IsInfix(row) ? message.find(row.english) : std::string_view::npos;
        if (at == std::string_view::npos) continue;
        return std::string(message.substr(0, at)) + Form(row, language) +
               TranslatedLine(message.substr(at + std::string_view(row.english).size()), language);
    }
    return std::nullopt;
}

// The message with its known start and its known endings translated, and what lies between them
// as a line of its own (a result after "Result of analysis: "); else with its known middle part
// translated; nothing when none is known.
std::optional<std::string> TranslatedMessage(std::string_view message, int language) {
    const TLibraryTextRow* start = LongestMatch(message, false);
    if (start) message.remove_prefix(std::string_view(start->english).size());
    std::string endings;
    while (const TLibraryTextRow* ending = LongestMatch(message, true)) {
        endings.insert(0, Form(*ending, language));
        message.remove_suffix(std::string_view(ending->english).size());
    }
    if (!start && endings.empty()) return TranslatedInfix(message, language);
    return (start ? Form(*start, language) : "") + TranslatedLine(message, language) + endings;
}

// The line with the message it holds translated: the whole line, or what follows a label ": ".
std::string TranslatedLine(std::string_view line, int language) {
    for (size_t at = 0; at != std::string_view::npos;) {
        if (const auto message = TranslatedMessage(line.substr(at), language))
            return std::string(line.substr(0, at)) + *message;
        at = line.find(": ", at);
        if (at != std::string_view::npos) at += 2;
    }
    return std::string(line);
}

}  // namespace

std::string LibraryText(std::string_view text, int language) {
    if (language != kPolish && language != kUkrainian) return std::string(text);
    std::string translated;
    for (size_t start = 0;;) {
        const size_t end = text.find('\n', start);
        translated += TranslatedLine(text.substr(start, end - start), language);
        if (end == std::string_view::npos) return translated;
        translated += '\n';
        start = end + 1;
    }
}

}  // namespace moremate::ui
