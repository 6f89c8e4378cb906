// Requests and responses are UTF-16 JSON documents from end to end; nothing on this path is
// converted to UTF-8.
#pragma once

#include "LumavenRapidJson.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

using JsonEncoding = rapidjson::UTF16<wchar_t>;
// RapidJSON's memory pool over an allocator that throws std::bad_alloc instead of handing the
// library a null pointer; the parse stack and the text buffer use the same.
using JsonAllocator = rapidjson::MemoryPoolAllocator<LumavenJson::ThrowingAllocator>;
using Document = rapidjson::GenericDocument<JsonEncoding, JsonAllocator, LumavenJson::ThrowingAllocator>;
using JsonValue = Document::ValueType;
using JsonText = rapidjson::GenericStringBuffer<JsonEncoding, LumavenJson::ThrowingAllocator>;

// Parses `text` into `document` by the default rules: exactly one JSON value, blanks around
// it allowed. Returns false on any parse error, and also when the text breaks one of the JSON
// library's own preconditions (a lone low surrogate in a \u escape): such a text is malformed
// in every build. Running out of memory throws std::bad_alloc.
bool ParseRequest(Document& document, const wchar_t* text);

// The compact form of `document` (no blanks), NUL-terminated.
void WriteCompact(const Document& document, JsonText& out);

// Whether `value` is an object with a member of that name.
bool HasMember(const JsonValue& value, const wchar_t* name);
// The member's value, or null when `value` is not an object or has no such member.
const JsonValue* MemberValue(const JsonValue& value, const wchar_t* name);

// The "BValue" of a set command: only the JSON literal true counts as on; a missing member
// or a JSON null is a malformed request.
enum class BValue { Missing, On, Off };
BValue ReadBValue(const Document& request);

// Adds a member under a constant name, allocated with the response's allocator.
void AddBool(Document& response, const wchar_t* name, bool value);
void AddInt(Document& response, const wchar_t* name, int value);

// Replaces the document's content with {"BValue": value}.
void ResetToBValue(Document& request, bool value);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
