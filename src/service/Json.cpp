#include "service/Json.h"

#include <cwchar>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

// Member names are short constants; the bound only keeps a bad pointer from running away.
constexpr size_t kMaxMemberNameChars = 1024;

}  // namespace

bool ParseRequest(Document& document, const wchar_t* text)
{
    // The iterative parser accepts exactly the texts of the default recursive one, but keeps
    // a deeply nested request off the machine stack.
    try {
        document.Parse<rapidjson::kParseIterativeFlag>(text);
    } catch (const LumavenJson::AssertionFailure&) {
        return false;
    }
    return !document.HasParseError();
}

void WriteCompact(const Document& document, JsonText& out)
{
    rapidjson::Writer<JsonText, JsonEncoding, JsonEncoding, LumavenJson::ThrowingAllocator> writer(out);
    document.Accept(writer);
}

const JsonValue* MemberValue(const JsonValue& value, const wchar_t* name)
{
    if (!value.IsObject() || name == nullptr) {
        return nullptr;
    }
    const auto length = static_cast<rapidjson::SizeType>(wcsnlen(name, kMaxMemberNameChars));
    const auto member = value.FindMember(rapidjson::GenericStringRef<wchar_t>(name, length));
    return member != value.MemberEnd() ? &member->value : nullptr;
}

bool HasMember(const JsonValue& value, const wchar_t* name)
{
    return MemberValue(value, name) != nullptr;
}

BValue ReadBValue(const Document& request)
{
    const JsonValue* value = MemberValue(request, L"BValue");
    if (value == nullptr || value->IsNull()) {
        return BValue::Missing;
    }
    return value->IsTrue() ? BValue::On : BValue::Off;
}

void AddBool(Document& response, const wchar_t* name, bool value)
{
    response.AddMember(rapidjson::StringRef(name), JsonValue(value), response.GetAllocator());
}

void AddInt(Document& response, const wchar_t* name, int value)
{
    response.AddMember(rapidjson::StringRef(name), JsonValue(value), response.GetAllocator());
}

void ResetToBValue(Document& request, bool value)
{
    request.SetObject();
    AddBool(request, L"BValue", value);
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
