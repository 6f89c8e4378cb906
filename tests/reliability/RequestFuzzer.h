// Seeded requests for ExecuteCommand: random and mutated JSON texts (deep nesting, huge
// strings, lone UTF-16 surrogates, NULs inside, numbers at the limits, repeated members,
// "BValue" of every JSON type), command numbers 0 to 20 and null pointers. Most requests are
// cheap on purpose (rejected before any handler, or answered without a vendor library); a
// small share reaches the vendor paths, which cost milliseconds each on the simulated laptop.
#pragma once

#include "Rng.h"

#include <cstdint>
#include <string>

namespace LumavenReliability {

enum class RequestShape : uint8_t {
    NullPointers,    // context, message or outString null
    UnknownCommand,  // command 0 or 15..20 (now and then a far larger number)
    Malformed,       // a text that does not parse, any command 0..20
    CheapValid,      // well-formed: command 7, or 9/14 without a usable "BValue"
    VendorPath,      // well-formed, commands 1..14: the real work
    Count
};
const char* ShapeName(RequestShape shape);

struct FuzzRequest {
    RequestShape shape = RequestShape::CheapValid;
    uint32_t command = 0;
    std::wstring text;  // may hold NULs: the service reads it up to the first one
    bool nullContext = false;
    bool nullMessage = false;
    bool nullOutString = false;
    bool withCallback = false;
    uint64_t contextWord = 0;
    uint64_t extra = 0;
};

// Shares per 10,000 requests.
struct FuzzMix {
    uint32_t nullPointers;
    uint32_t unknownCommand;
    uint32_t malformed;
    uint32_t cheapValid;
    uint32_t vendorPath;
};
// About one request in 250 reaches a vendor path.
inline constexpr FuzzMix kCheapMostlyMix{400, 1500, 4500, 3560, 40};

class RequestFuzzer {
public:
    explicit RequestFuzzer(uint64_t seed, FuzzMix mix = kCheapMostlyMix);

    FuzzRequest Next();
    FuzzRequest Make(RequestShape shape);

    // The text generators, each of which keeps its promise (checked with IsWellFormedJson).
    std::wstring WellFormedText();
    std::wstring SetRequestText();       // an object around "BValue", with any kind of value
    std::wstring WithoutUsableBValue();  // well-formed, but "BValue" missing or null
    std::wstring MalformedText();

private:
    std::wstring AnyValue(int depth);
    std::wstring Number();
    std::wstring StringLiteral();
    std::wstring HugeString();
    std::wstring DeepNesting();
    std::wstring WideObject();
    std::wstring BValueKey();
    std::wstring Mutate(std::wstring text);
    std::wstring Candidate();

    Rng m_rng;
    FuzzMix m_mix;
};

// The oracle: whether the text, read up to its first NUL, is exactly one JSON value by the
// parser's default rules.
bool IsWellFormedJson(const std::wstring& text);

// A short printable form of a request text for failure messages.
std::string Preview(const std::wstring& text);

}  // namespace LumavenReliability
