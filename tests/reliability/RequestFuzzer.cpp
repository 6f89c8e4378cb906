#include "RequestFuzzer.h"

#include "LumavenRapidJson.h"

#include <array>
#include <cstdio>
#include <cwchar>

namespace LumavenReliability {

namespace {

using Encoding = rapidjson::UTF16<wchar_t>;

// Numbers the parser must take or refuse at the edges of its ranges.
constexpr std::array<const wchar_t*, 28> kEdgeNumbers = {L"0",
                                                         L"-0",
                                                         L"1",
                                                         L"-1",
                                                         L"2147483647",
                                                         L"-2147483648",
                                                         L"4294967295",
                                                         L"4294967296",
                                                         L"9223372036854775807",
                                                         L"-9223372036854775808",
                                                         L"-9223372036854775809",
                                                         L"18446744073709551615",
                                                         L"18446744073709551616",
                                                         L"1.7976931348623157e308",
                                                         L"-1.7976931348623157e308",
                                                         L"1e308",
                                                         L"1e309",
                                                         L"-1e309",
                                                         L"4.9e-324",
                                                         L"2.2250738585072014e-308",
                                                         L"1e-400",
                                                         L"0.0000000000000000000000000000001",
                                                         L"123456789012345678901234567890123456789",
                                                         L"1E+2",
                                                         L"1e-0",
                                                         L"0.5",
                                                         L"3.141592653589793238462643383279",
                                                         L"-0.0e-0"};
// Spellings that are not JSON numbers.
constexpr std::array<const wchar_t*, 12> kBadNumbers = {L"01",  L"1.",   L".5",  L"+1",       L"-",         L"1e",
                                                        L"1e+", L"0x10", L"NaN", L"Infinity", L"-Infinity", L"1_000"};
// Member names that look like the one the set commands read, and some that are it.
constexpr std::array<const wchar_t*, 12> kKeys = {
    L"\"BValue\"",       L"\"BValue\"",        L"\"BValue\"",  L"\"\\u0042Value\"",
    L"\"BValu\\u0065\"", L"\"bvalue\"",        L"\"BValue \"", L"\"BVALUE\"",
    L"\"result\"",       L"\"BValue\\u0000\"", L"\"\"",        L"\"value\""};
// Values a set command may find under "BValue".
constexpr std::array<const wchar_t*, 16> kBValues = {L"true",     L"false",       L"null",
                                                     L"0",        L"1",           L"-1",
                                                     L"\"true\"", L"\"\"",        L"[]",
                                                     L"{}",       L"[true]",      L"{\"BValue\":true}",
                                                     L"1e308",    L"\"\\u0000\"", L"\"\\uD83D\\uDE00\"",
                                                     L"1e-400"};
// Texts that are broken in one known way each.
constexpr std::array<const wchar_t*, 28> kBrokenTexts = {L"",
                                                         L" \t\r\n",
                                                         L"{}{}",
                                                         L"{} {}",
                                                         L"[] x",
                                                         L"{\"BValue\":tru}",
                                                         L"{\"BValue\":True}",
                                                         L"{\"BValue\" true}",
                                                         L"{'BValue':true}",
                                                         L"{\"BValue\":true,}",
                                                         L"[1,]",
                                                         L"\"\\uD800\"",
                                                         L"\"\\uD800\\u0041\"",
                                                         L"\"\\x41\"",
                                                         L"\"abc",
                                                         L"/* note */{}",
                                                         L"{\"BValue\":true",
                                                         L"{\"BValue\":true]",
                                                         L"[\"a\":1]",
                                                         L"{1:true}",
                                                         L"{\"BValue\":undefined}",
                                                         L"\"\\u12\"",
                                                         L"{\"a\" : \"b\" \"c\"}",
                                                         L"\xFEFF{}",
                                                         L"\"\\uDC00\"",
                                                         L"{\"BValue\":\"\\udfff\"}",
                                                         L"\"\\uDC00\\uD800\"",
                                                         L"[\"\\uD800\\uD800\"]"};
// Pieces dropped into texts by the mutator.
constexpr std::array<const wchar_t*, 16> kInsertions = {L"{",    L"}",      L"[",   L"]",          L",",       L":",
                                                        L"\"",   L"\\",     L"\\u", L"tru",        L"\\uD800", L"nul",
                                                        L"\x01", L"\xFFFF", L" ",   L"\"BValue\":"};

template <class Array>
const wchar_t* Pick(Rng& rng, const Array& array)
{
    return array[rng.Below(array.size())];
}

// A \u escape of `unit`, its hex digits in upper or lower case.
std::wstring UnicodeEscape(Rng& rng, uint32_t unit)
{
    wchar_t escape[8];
    std::swprintf(escape, 8, rng.Chance(500) ? L"\\u%04X" : L"\\u%04x", unit);
    return escape;
}

// A code unit of the range [first, last], its ends more often than chance would pick them.
uint32_t UnitIn(Rng& rng, uint32_t first, uint32_t last)
{
    switch (rng.Below(8)) {
    case 0: return first;
    case 1: return last;
    default: return first + static_cast<uint32_t>(rng.Below(last - first + 1));
    }
}

// Every kind of escape JSON has: the eight short ones, and \u escapes of each class of code
// unit: control characters, ASCII, the rest of the BMP below and above the surrogates, and
// surrogate pairs. With `allowBad`, also the escapes the parser refuses: a lone high
// surrogate, a lone low surrogate, a pair in the wrong order, two high surrogates, and a high
// surrogate before an escape that is not a low one.
std::wstring Escape(Rng& rng, bool allowBad)
{
    static constexpr std::array<const wchar_t*, 8> kShort = {L"\\\"", L"\\\\", L"\\/", L"\\b",
                                                             L"\\f",  L"\\n",  L"\\r", L"\\t"};
    const auto high = [&rng] { return UnicodeEscape(rng, UnitIn(rng, 0xD800, 0xDBFF)); };
    const auto low = [&rng] { return UnicodeEscape(rng, UnitIn(rng, 0xDC00, 0xDFFF)); };
    switch (rng.Below(allowBad ? 11 : 6)) {
    case 0: return kShort[rng.Below(kShort.size())];
    case 1: return UnicodeEscape(rng, UnitIn(rng, 0x0000, 0x001F));
    case 2: return UnicodeEscape(rng, UnitIn(rng, 0x0020, 0x007F));
    case 3: return UnicodeEscape(rng, UnitIn(rng, 0x0080, 0xD7FF));
    case 4: return UnicodeEscape(rng, UnitIn(rng, 0xE000, 0xFFFF));
    case 5: return high() + low();
    case 6: return high();
    case 7: return low();
    case 8: return low() + high();
    case 9: return high() + high();
    default: return high() + (rng.Chance(500) ? UnicodeEscape(rng, UnitIn(rng, 0x0000, 0xD7FF)) : L"\\n");
    }
}

// One code unit for a string body: plain text, escapes of every kind, characters beyond
// ASCII, and raw lone surrogates (which the parser does not validate).
std::wstring StringUnit(Rng& rng, bool allowBadEscapes)
{
    switch (rng.Below(12)) {
    case 0:
    case 1:
    case 2:
    case 3: return Escape(rng, allowBadEscapes && rng.Chance(300));
    case 5: return std::wstring(1, static_cast<wchar_t>(0xD800 + rng.Below(0x800)));
    case 6: return std::wstring(1, static_cast<wchar_t>(0x00A0 + rng.Below(0xD700 - 0xA0)));
    case 7: return std::wstring(1, static_cast<wchar_t>(0xE000 + rng.Below(0x2000)));
    default: return std::wstring(1, static_cast<wchar_t>(L' ' + 1 + rng.Below(94)));
    }
}

std::wstring Blanks(Rng& rng)
{
    static constexpr wchar_t kBlank[] = L" \t\r\n";
    std::wstring blanks;
    for (uint64_t i = rng.Below(4); i > 0; --i) {
        blanks += kBlank[rng.Below(4)];
    }
    return blanks;
}

std::wstring UpToFirstNul(const std::wstring& text)
{
    return text.substr(0, text.find(L'\0'));
}

// Whether a well-formed text carries "BValue" with a non-null value, found the way the set
// commands look it up (first member of that exact name).
bool HasUsableBValue(const std::wstring& text)
{
    rapidjson::GenericDocument<Encoding> document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.c_str());
    if (document.HasParseError() || !document.IsObject()) {
        return false;
    }
    const auto member = document.FindMember(L"BValue");
    return member != document.MemberEnd() && !member->value.IsNull();
}

}  // namespace

const char* ShapeName(RequestShape shape)
{
    switch (shape) {
    case RequestShape::NullPointers: return "null-pointers";
    case RequestShape::UnknownCommand: return "unknown-command";
    case RequestShape::Malformed: return "malformed";
    case RequestShape::CheapValid: return "cheap-valid";
    case RequestShape::VendorPath: return "vendor-path";
    case RequestShape::Count: break;
    }
    return "?";
}

bool IsWellFormedJson(const std::wstring& text)
{
    // Same acceptance as the default recursive parser, without recursion: the deepest texts
    // would otherwise overflow this thread's stack.
    rapidjson::GenericReader<Encoding, Encoding> reader;
    rapidjson::GenericStringStream<Encoding> stream(text.c_str());
    rapidjson::BaseReaderHandler<Encoding> handler;
    try {
        return !reader.Parse<rapidjson::kParseIterativeFlag>(stream, handler).IsError();
    } catch (const LumavenJson::AssertionFailure&) {
        // A text the library cannot take (an escaped lone low surrogate) is not a request.
        return false;
    }
}

std::string Preview(const std::wstring& text)
{
    std::string preview;
    for (size_t i = 0; i < text.size() && i < 60; ++i) {
        const wchar_t unit = text[i];
        if (unit >= 0x20 && unit < 0x7F) {
            preview += static_cast<char>(unit);
        } else {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04X", static_cast<unsigned>(unit));
            preview += escaped;
        }
    }
    char length[48];
    std::snprintf(length, sizeof length, "%s (%zu units)", text.size() > 60 ? "..." : "", text.size());
    return preview + length;
}

RequestFuzzer::RequestFuzzer(uint64_t seed, FuzzMix mix) : m_rng(seed), m_mix(mix) {}

FuzzRequest RequestFuzzer::Next()
{
    const uint32_t shares[] = {m_mix.nullPointers, m_mix.unknownCommand, m_mix.malformed, m_mix.cheapValid,
                               m_mix.vendorPath};
    uint64_t total = 0;
    for (const uint32_t share : shares) {
        total += share;
    }
    uint64_t draw = m_rng.Below(total);
    size_t shape = 0;
    while (draw >= shares[shape]) {
        draw -= shares[shape];
        ++shape;
    }
    return Make(static_cast<RequestShape>(shape));
}

FuzzRequest RequestFuzzer::Make(RequestShape shape)
{
    FuzzRequest request;
    request.shape = shape;
    request.contextWord = m_rng.Next();
    request.extra = m_rng.Next();
    request.withCallback = m_rng.Chance(100);
    switch (shape) {
    case RequestShape::NullPointers: {
        request.command = static_cast<uint32_t>(m_rng.Below(21));
        const uint64_t pattern = m_rng.Between(1, 7);
        request.nullContext = (pattern & 1) != 0;
        request.nullMessage = (pattern & 2) != 0;
        request.nullOutString = (pattern & 4) != 0;
        request.text = m_rng.Chance(500) ? WellFormedText() : MalformedText();
        break;
    }
    case RequestShape::UnknownCommand: {
        static constexpr uint32_t kFar[] = {21, 255, 65536, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        static constexpr uint32_t kNear[] = {0, 15, 16, 17, 18, 19, 20};
        request.command = m_rng.Chance(20) ? kFar[m_rng.Below(6)] : kNear[m_rng.Below(7)];
        request.text = m_rng.Chance(900) ? WellFormedText() : MalformedText();
        break;
    }
    case RequestShape::Malformed:
        request.command = static_cast<uint32_t>(m_rng.Below(21));
        request.text = MalformedText();
        break;
    case RequestShape::CheapValid:
        switch (m_rng.Below(3)) {
        case 0:
            request.command = 7;
            request.text = WellFormedText();
            break;
        case 1:
            request.command = 9;
            request.text = WithoutUsableBValue();
            break;
        default:
            request.command = 14;
            request.text = WithoutUsableBValue();
            break;
        }
        break;
    case RequestShape::VendorPath:
    case RequestShape::Count:
        request.shape = RequestShape::VendorPath;
        request.command = static_cast<uint32_t>(m_rng.Between(1, 14));
        if (request.command == 9 || request.command == 14 || m_rng.Chance(300)) {
            request.text = SetRequestText();
        } else {
            request.text = m_rng.Chance(500) ? std::wstring(L"{}") : WellFormedText();
        }
        break;
    }
    return request;
}

std::wstring RequestFuzzer::WellFormedText()
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        std::wstring text = Candidate();
        if (IsWellFormedJson(text)) {
            if (m_rng.Chance(50)) {
                // Whatever follows a NUL is not part of the request.
                text += L'\0';
                text += Pick(m_rng, kBrokenTexts);
            }
            return text;
        }
    }
    return L"{}";
}

std::wstring RequestFuzzer::SetRequestText()
{
    for (int attempt = 0; attempt < 4; ++attempt) {
        std::wstring text = L"{" + Blanks(m_rng);
        const uint64_t members = m_rng.Between(1, 5);
        for (uint64_t i = 0; i < members; ++i) {
            if (i > 0) {
                text += L",";
            }
            text += BValueKey() + Blanks(m_rng) + L":" + Blanks(m_rng);
            switch (m_rng.Below(10)) {
            case 0: text += AnyValue(2); break;
            case 1: text += m_rng.Chance(100) ? DeepNesting() : Number(); break;
            case 2: text += m_rng.Chance(50) ? HugeString() : StringLiteral(); break;
            default: text += Pick(m_rng, kBValues); break;
            }
        }
        text += Blanks(m_rng) + L"}";
        if (IsWellFormedJson(text)) {
            return text;
        }
    }
    return m_rng.Chance(500) ? L"{\"BValue\":true}" : L"{\"BValue\":false}";
}

std::wstring RequestFuzzer::WithoutUsableBValue()
{
    for (int attempt = 0; attempt < 6; ++attempt) {
        std::wstring text;
        switch (m_rng.Below(4)) {
        case 0: text = L"{\"BValue\":null" + (m_rng.Chance(500) ? L",\"BValue\":true" : std::wstring()) + L"}"; break;
        case 1: text = WellFormedText(); break;
        case 2: text = L"[" + SetRequestText() + L"]"; break;
        default: text = SetRequestText(); break;
        }
        if (IsWellFormedJson(text) && !HasUsableBValue(text)) {
            return text;
        }
    }
    return L"{\"bvalue\":true}";
}

std::wstring RequestFuzzer::MalformedText()
{
    std::wstring text;
    switch (m_rng.Below(10)) {
    case 0: text = Pick(m_rng, kBrokenTexts); break;
    case 1: text = std::wstring(m_rng.Chance(100) ? m_rng.Between(10000, 100000) : m_rng.Between(1, 2000), L'['); break;
    case 2: text = L"{\"BValue\":" + std::wstring(Pick(m_rng, kBadNumbers)) + L"}"; break;
    case 3: text = L"\"a" + std::wstring(1, static_cast<wchar_t>(m_rng.Below(0x20))) + L"b\""; break;
    default: text = Mutate(Candidate()); break;
    }
    if (IsWellFormedJson(text)) {
        // A mutation that happened to keep the text well-formed: anything after the one root
        // value breaks it.
        text = UpToFirstNul(text) + L",";
    }
    return text;
}

std::wstring RequestFuzzer::Candidate()
{
    switch (m_rng.Below(20)) {
    case 0: return DeepNesting();
    case 1: return L"{\"BValue\":" + HugeString() + L"}";
    case 2: return WideObject();
    case 3: return Number();
    case 4: return StringLiteral();
    case 5: return Blanks(m_rng) + (m_rng.Chance(500) ? L"{}" : L"[]") + Blanks(m_rng);
    case 6:
    case 7:
    case 8:
    case 9:
    case 10: return SetRequestText();
    default: return AnyValue(0);
    }
}

std::wstring RequestFuzzer::AnyValue(int depth)
{
    const uint64_t kind = depth > 4 ? m_rng.Below(5) : m_rng.Below(7);
    switch (kind) {
    case 0: return m_rng.Chance(500) ? L"true" : L"false";
    case 1: return L"null";
    case 2: return Number();
    case 3:
    case 4: return StringLiteral();
    case 5: {
        std::wstring text = L"[";
        for (uint64_t i = m_rng.Below(5); i > 0; --i) {
            text += AnyValue(depth + 1) + (i > 1 ? L"," : L"");
        }
        return text + L"]";
    }
    default: {
        std::wstring text = L"{";
        for (uint64_t i = m_rng.Below(5); i > 0; --i) {
            text +=
                (m_rng.Chance(400) ? BValueKey() : StringLiteral()) + L":" + AnyValue(depth + 1) + (i > 1 ? L"," : L"");
        }
        return text + L"}";
    }
    }
}

std::wstring RequestFuzzer::Number()
{
    if (m_rng.Chance(100)) {
        // A very long one.
        std::wstring digits = L"9";
        for (uint64_t i = m_rng.Between(20, 600); i > 0; --i) {
            digits += static_cast<wchar_t>(L'0' + m_rng.Below(10));
        }
        return m_rng.Chance(500) ? digits : L"0." + digits;
    }
    if (m_rng.Chance(500)) {
        return Pick(m_rng, kEdgeNumbers);
    }
    return std::to_wstring(static_cast<int64_t>(m_rng.Next()) >> m_rng.Below(64));
}

std::wstring RequestFuzzer::StringLiteral()
{
    std::wstring text = L"\"";
    for (uint64_t i = m_rng.Below(12); i > 0; --i) {
        text += StringUnit(m_rng, true);
    }
    return text + L"\"";
}

std::wstring RequestFuzzer::HugeString()
{
    const uint64_t length = m_rng.Chance(50) ? m_rng.Between(256 * 1024, 1024 * 1024) : m_rng.Between(1024, 64 * 1024);
    std::wstring chunk;
    while (chunk.size() < 64) {
        chunk += StringUnit(m_rng, m_rng.Chance(200));
    }
    std::wstring text = L"\"";
    text.reserve(length + chunk.size() + 2);
    while (text.size() < length) {
        text += chunk;
    }
    return text + L"\"";
}

std::wstring RequestFuzzer::DeepNesting()
{
    const uint64_t depth = m_rng.Chance(100) ? m_rng.Between(10000, 100000) : m_rng.Between(1, 3000);
    const uint64_t kind = m_rng.Below(3);
    std::wstring open;
    std::wstring close;
    open.reserve(depth * 10);
    for (uint64_t i = 0; i < depth; ++i) {
        const bool array = kind == 0 || (kind == 2 && (i % 2) == 0);
        open += array ? L"[" : L"{\"BValue\":";
        close += array ? L"]" : L"}";
    }
    const wchar_t* inner = m_rng.Chance(500) ? L"true" : L"null";
    return open + inner + std::wstring(close.rbegin(), close.rend());
}

std::wstring RequestFuzzer::WideObject()
{
    std::wstring text = L"{";
    const uint64_t members = m_rng.Between(1, 2000);
    const bool repeatBValue = m_rng.Chance(500);
    for (uint64_t i = 0; i < members; ++i) {
        if (i > 0) {
            text += L",";
        }
        text += repeatBValue ? L"\"BValue\"" : L"\"k" + std::to_wstring(i) + L"\"";
        text += L":";
        text += Pick(m_rng, kBValues);
    }
    return text + L"}";
}

std::wstring RequestFuzzer::BValueKey()
{
    return Pick(m_rng, kKeys);
}

std::wstring RequestFuzzer::Mutate(std::wstring text)
{
    for (uint64_t round = m_rng.Between(1, 3); round > 0; --round) {
        if (text.empty()) {
            text = Pick(m_rng, kInsertions);
            continue;
        }
        const size_t at = static_cast<size_t>(m_rng.Below(text.size()));
        const size_t span = static_cast<size_t>(m_rng.Between(1, 8));
        switch (m_rng.Below(8)) {
        case 0: text.erase(at, span); break;
        case 1: text.insert(at, Pick(m_rng, kInsertions)); break;
        case 2: text[at] = static_cast<wchar_t>(m_rng.Below(0x10000)); break;
        case 3: text.resize(at); break;
        case 4: text.insert(at, text.substr(at, span)); break;
        case 5: text += Blanks(m_rng) + AnyValue(3); break;
        case 6: text.insert(0, 1, static_cast<wchar_t>(0xFEFF)); break;
        default: text.insert(at, 1, L'\0'); break;
        }
    }
    return text;
}

}  // namespace LumavenReliability
