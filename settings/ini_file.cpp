#include "ini_file.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "bounded_file.h"
#include "core/chess_exception.h"
#include "replace_file.h"
#include "trim.h"

namespace moremate {
namespace {

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

struct TLine {
    std::string sText;
    std::string sEnding;  // "\n", "\r\n", or empty for a last line without a line break
};

// The file as lines; a byte-order mark is kept aside so that the first line parses like the others.
struct TIniText {
    std::string sBom;
    std::vector<TLine> lines;
};

// An initialization file holds a few kilobytes: one past this is not one.
constexpr uint64_t kIniFileLimit = 1 << 20;

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return std::nullopt;
    return ReadTextFile(path, {.nFileBytes = kIniFileLimit, .nStreamBytes = 0});
}

TIniText SplitLines(std::string_view content) {
    TIniText ini;
    if (content.starts_with(kUtf8Bom)) {
        ini.sBom = kUtf8Bom;
        content.remove_prefix(kUtf8Bom.size());
    }
    while (!content.empty()) {
        std::size_t end = content.find('\n');
        if (end == std::string_view::npos) {
            ini.lines.push_back({std::string(content), ""});
            break;
        }
        bool bCrLf = end > 0 && content[end - 1] == '\r';
        ini.lines.push_back({std::string(content.substr(0, bCrLf ? end - 1 : end)), bCrLf ? "\r\n" : "\n"});
        content.remove_prefix(end + 1);
    }
    return ini;
}

std::string JoinLines(const TIniText& ini) {
    std::string content = ini.sBom;
    for (const TLine& line : ini.lines) content += line.sText + line.sEnding;
    return content;
}

// New lines follow the file's own convention.
std::string LineEnding(const TIniText& ini) {
    for (const TLine& line : ini.lines) {
        if (!line.sEnding.empty()) return line.sEnding;
    }
    return "\n";
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    auto lower = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; };
    return std::ranges::equal(a, b, [&](char x, char y) { return lower(x) == lower(y); });
}

std::optional<std::string_view> SectionName(std::string_view line) {
    line = Trim(line);
    std::size_t close = line.find(']');
    if (!line.starts_with('[') || close == std::string_view::npos) return std::nullopt;
    return Trim(line.substr(1, close - 1));
}

// Position of the '=' of a "key=value" line; comments and headers are not key lines.
std::optional<std::size_t> EqualsSign(std::string_view line) {
    std::string_view trimmed = Trim(line);
    if (trimmed.empty() || trimmed.front() == ';' || trimmed.front() == '#' || trimmed.front() == '[') {
        return std::nullopt;
    }
    std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    return equals;
}

struct TKeyLookup {
    std::optional<std::size_t> keyLine;          // the key's first line in a section of that name
    std::optional<std::size_t> lastSectionLine;  // the last non-blank line of the first such section
};

TKeyLookup FindKey(const TIniText& ini, std::string_view section, std::string_view key) {
    TKeyLookup found;
    bool bInSection = false;
    bool bInFirstSection = false;
    for (std::size_t i = 0; i < ini.lines.size(); ++i) {
        std::string_view text = ini.lines[i].sText;
        if (std::optional<std::string_view> name = SectionName(text)) {
            bInSection = EqualNoCase(*name, section);
            bInFirstSection = bInSection && !found.lastSectionLine;
            if (bInFirstSection) found.lastSectionLine = i;
            continue;
        }
        if (bInFirstSection && !Trim(text).empty()) found.lastSectionLine = i;
        std::optional<std::size_t> equals = EqualsSign(text);
        if (bInSection && equals && EqualNoCase(Trim(text.substr(0, *equals)), key)) {
            found.keyLine = i;
            return found;
        }
    }
    return found;
}

std::string_view StripQuotes(std::string_view value) {
    bool bQuoted =
        value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
    return bQuoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<std::string> FindValue(const std::filesystem::path& path, std::string_view section,
                                     std::string_view key) {
    std::optional<std::string> content = ReadWholeFile(path);
    if (!content) return std::nullopt;
    TIniText ini = SplitLines(*content);
    std::optional<std::size_t> line = FindKey(ini, section, key).keyLine;
    if (!line) return std::nullopt;
    std::string_view text = ini.lines[*line].sText;
    return std::string(StripQuotes(Trim(text.substr(*EqualsSign(text) + 1))));
}

int ParseLeadingInt(std::string_view text) {
    bool bNegative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
    uint32_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') break;
        value = value * 10 + static_cast<uint32_t>(c - '0');
    }
    return static_cast<int>(bNegative ? 0u - value : value);
}

std::string CutToCodePoints(std::string text, std::size_t maxLength) {
    std::size_t codePoints = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool bStartsCodePoint = (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
        if (bStartsCodePoint && codePoints++ == maxLength) {
            text.resize(i);
            break;
        }
    }
    return text;
}

void InsertLine(TIniText& ini, std::size_t position, std::string text, const std::string& ending) {
    if (position > 0 && ini.lines[position - 1].sEnding.empty()) ini.lines[position - 1].sEnding = ending;
    ini.lines.insert(ini.lines.begin() + static_cast<std::ptrdiff_t>(position), {std::move(text), ending});
}

}  // namespace

int CIniFile::ReadInt(std::string_view section, std::string_view key, int defaultValue) const {
    std::optional<std::string> value = FindValue(m_path, section, key);
    return value && !value->empty() ? ParseLeadingInt(*value) : defaultValue;
}

std::string CIniFile::ReadString(std::string_view section, std::string_view key,
                                 std::string_view defaultValue, std::size_t maxLength) const {
    return CutToCodePoints(FindValue(m_path, section, key).value_or(std::string(defaultValue)), maxLength);
}

bool CIniFile::WriteString(std::string_view section, std::string_view key, std::string_view value) const {
    // A value is one line: a line break inside it would end the value and start a stray line.
    std::string oneLine(value);
    std::ranges::replace_if(
        oneLine, [](char c) { return c == '\r' || c == '\n'; }, ' ');

    std::optional<std::string> content;
    try {
        content = ReadWholeFile(m_path);
    } catch (const ChessException&) {
        return false;  // not an initialization file: left as it is
    }
    TIniText ini = SplitLines(content.value_or(""));
    TKeyLookup found = FindKey(ini, section, key);
    std::string ending = LineEnding(ini);
    std::string keyLine = std::string(key) + "=" + oneLine;
    if (found.keyLine) {
        std::string& text = ini.lines[*found.keyLine].sText;
        text = text.substr(0, *EqualsSign(text) + 1) + oneLine;
    } else if (found.lastSectionLine) {
        InsertLine(ini, *found.lastSectionLine + 1, keyLine, ending);
    } else {
        if (!ini.lines.empty() && !Trim(ini.lines.back().sText).empty()) {
            InsertLine(ini, ini.lines.size(), "", ending);
        }
        InsertLine(ini, ini.lines.size(), std::string("[").append(section).append("]"), ending);
        InsertLine(ini, ini.lines.size(), keyLine, ending);
    }
    return ReplaceFile(m_path, JoinLines(ini));
}

bool CIniFile::WriteInt(std::string_view section, std::string_view key, long long value) const {
    return WriteString(section, key, std::to_string(value));
}

}  // namespace moremate
