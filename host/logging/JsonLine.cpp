#include "JsonLine.h"

#include <cstdio>

namespace Xelto::Logging {

namespace {

void AppendEscape(std::string& out, unsigned unit)
{
    switch (unit) {
    case '"': out += "\\\""; return;
    case '\\': out += "\\\\"; return;
    case '\b': out += "\\b"; return;
    case '\f': out += "\\f"; return;
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '\t': out += "\\t"; return;
    default: break;
    }
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\u%04X", unit & 0xFFFFu);
    out += escaped;
}

void AppendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

bool IsHighSurrogate(unsigned u)
{
    return u >= 0xD800 && u <= 0xDBFF;
}
bool IsLowSurrogate(unsigned u)
{
    return u >= 0xDC00 && u <= 0xDFFF;
}

// UTF-16 text as a JSON string body in UTF-8. A lone surrogate cannot be UTF-8, so it is
// kept as a \u escape: the line stays valid JSON and the text loses nothing.
void AppendWideString(std::string& out, const std::wstring& text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned unit = static_cast<unsigned>(text[i]) & 0xFFFFu;
        if (IsHighSurrogate(unit) && i + 1 < text.size() &&
            IsLowSurrogate(static_cast<unsigned>(text[i + 1]) & 0xFFFFu)) {
            const unsigned low = static_cast<unsigned>(text[++i]) & 0xFFFFu;
            AppendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
        } else if (unit < 0x20 || unit == '"' || unit == '\\' || IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
            AppendEscape(out, unit);
        } else {
            AppendUtf8(out, unit);
        }
    }
}

// The provider name is narrow; it is passed through as UTF-8 with JSON's escapes.
void AppendNarrowString(std::string& out, const std::string& text)
{
    for (const char c : text) {
        const unsigned byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == '"' || byte == '\\') {
            AppendEscape(out, byte);
        } else {
            out += c;
        }
    }
}

}  // namespace

std::string JsonLine(Level level, const std::string& provider, uint64_t context, const std::wstring& text)
{
    std::string line = "{\"level\":\"";
    line += LevelName(level);
    line += "\",\"provider\":\"";
    AppendNarrowString(line, provider);
    line += "\",\"context\":";
    line += std::to_string(context);
    line += ",\"text\":\"";
    AppendWideString(line, text);
    line += "\"}\n";
    return line;
}

}  // namespace Xelto::Logging
