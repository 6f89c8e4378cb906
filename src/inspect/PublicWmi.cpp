#include "inspect/PublicWmi.h"

#include "util/TypeName.h"

#include <comdef.h>
#include <oleauto.h>

#include <cwchar>
#include <iterator>
#include <string>

namespace Xelto::Spanlet::Server::Shared::WMI {

using Microsoft::WRL::ComPtr;

namespace {

constexpr wchar_t kWarning[] = L"%S.%S - failed on function %s with HRESULT 0x%x";
// The warnings' context word: the address of an empty wide text.
constexpr wchar_t kNoContext[] = L"";

constexpr wchar_t kSelectAll[] = L"SELECT * FROM ";
// Each part of the query is measured with this bound; a longer class name is cut there.
constexpr size_t kMaxQueryPart = 1024;

constexpr VARTYPE kArrayOfI4 = VT_ARRAY | VT_I4;
constexpr VARTYPE kArrayOfBstr = VT_ARRAY | VT_BSTR;
constexpr VARTYPE kArrayOfBool = VT_ARRAY | VT_BOOL;

// An owned BSTR. A failed allocation raises the COM error for E_OUTOFMEMORY, as COM's own
// string class does; nothing here catches it.
class OwnedBstr {
public:
    OwnedBstr(const wchar_t* text, size_t length) : m_text(SysAllocStringLen(text, static_cast<UINT>(length)))
    {
        if (m_text == nullptr) {
            _com_issue_error(E_OUTOFMEMORY);
        }
    }
    ~OwnedBstr() { SysFreeString(m_text); }
    OwnedBstr(const OwnedBstr&) = delete;
    OwnedBstr& operator=(const OwnedBstr&) = delete;

    BSTR get() const { return m_text; }

private:
    BSTR m_text;
};

// A VARIANT that is cleared (its string or array freed) when it goes out of scope.
class OwnedVariant {
public:
    OwnedVariant() { VariantInit(&m_value); }
    ~OwnedVariant() { VariantClear(&m_value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    VARIANT& get() { return m_value; }
    const VARIANT& get() const { return m_value; }

private:
    VARIANT m_value{};
};

// Joins the multithreaded apartment for one query and leaves it on every exit. The leave is
// paired with the join whatever the join answered, so a failed join (a thread that already
// lives in a single-threaded apartment) still takes one initialisation off the thread.
class MultithreadedApartment {
public:
    MultithreadedApartment() : m_result(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~MultithreadedApartment() { CoUninitialize(); }
    MultithreadedApartment(const MultithreadedApartment&) = delete;
    MultithreadedApartment& operator=(const MultithreadedApartment&) = delete;

    HRESULT result() const { return m_result; }

private:
    HRESULT m_result;
};

// Appends a scalar of one of the three supported types; false (nothing appended) for any
// other type.
bool AppendScalar(const VARIANT& value, JsonArray& into, Document::AllocatorType& allocator)
{
    switch (value.vt) {
    case VT_I4: into.PushBack(JsonArray(static_cast<int>(value.lVal)), allocator); return true;
    case VT_BSTR:
        // A null BSTR is the empty string; its length is 0.
        into.PushBack(JsonArray(value.bstrVal != nullptr ? value.bstrVal : L"",
                                static_cast<rapidjson::SizeType>(SysStringLen(value.bstrVal)), allocator),
                      allocator);
        return true;
    case VT_BOOL: into.PushBack(JsonArray(value.boolVal != VARIANT_FALSE), allocator); return true;
    default: return false;
    }
}

bool IsSupportedArray(VARTYPE type)
{
    return type == kArrayOfI4 || type == kArrayOfBstr || type == kArrayOfBool;
}

}  // namespace

uint32_t StatusAfterConnectFailure(HRESULT result, uint32_t status)
{
    return result == static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE) ? StatusWmiInvalidNamespace : status;
}

uint32_t StatusAfterNextFailure(HRESULT result, uint32_t status)
{
    if (result == static_cast<HRESULT>(WBEM_E_INVALID_CLASS)) {
        return StatusWmiInvalidClass;
    }
    if (result == static_cast<HRESULT>(WBEM_E_INVALID_QUERY)) {
        return StatusWmiInvalidQuery;
    }
    return status;
}

uint32_t StatusAfterGetFailure(HRESULT result, uint32_t status)
{
    return result == static_cast<HRESULT>(WBEM_E_NOT_FOUND) ? StatusWmiPropertyNotFound : status;
}

bool SecurityFailureIsLogged(HRESULT result)
{
    return FAILED(result) && result != RPC_E_TOO_LATE;
}

PublicWmi::PublicWmi(const wchar_t* wmiNamespace)
    : m_logger(LogManager::GetLogger()), m_typeName(LumavenUtil::TypeNameOf<PublicWmi>()),
      m_namespace(wmiNamespace != nullptr ? wmiNamespace : kDefaultWmiNamespace)
{
}

void PublicWmi::Warn(const char* operation, const wchar_t* label, HRESULT result) const
{
    m_logger->LogWarning(LoggingData{kWarning, reinterpret_cast<uint64_t>(kNoContext), 0}, m_typeName.c_str(),
                         operation, label, static_cast<uint32_t>(result));
}

ComPtr<IWbemServices> PublicWmi::ConnectToWmi(uint32_t& status)
{
    // Security is process-wide and can be set once; the connection is attempted whatever
    // the answer.
    const HRESULT security = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                  RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    if (SecurityFailureIsLogged(security)) {
        Warn("ConnectToWmi", L"CoInitializeSecurity", security);
    }

    ComPtr<IWbemLocator> locator;
    HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &locator);
    if (FAILED(result)) {
        Warn("ConnectToWmi", L"CoCreateInstance", result);
        return nullptr;
    }

    ComPtr<IWbemServices> services;
    const OwnedBstr wmiNamespace(m_namespace, wcslen(m_namespace));
    result = locator->ConnectServer(wmiNamespace.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services);
    locator.Reset();
    if (FAILED(result)) {
        Warn("ConnectToWmi", L"IWbemLocator->ConnectServer(WmiNamespace)", result);
        status = StatusAfterConnectFailure(result, status);
        return nullptr;
    }

    result = CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                               RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    if (FAILED(result)) {
        Warn("ConnectToWmi", L"CoSetProxyBlanket", result);
        return nullptr;
    }
    return services;
}

ComPtr<IEnumWbemClassObject> PublicWmi::EnumClassObject(const wchar_t* className, uint32_t& status)
{
    const ComPtr<IWbemServices> services = ConnectToWmi(status);
    if (!services) {
        return nullptr;
    }

    std::wstring query(kSelectAll, wcsnlen(kSelectAll, kMaxQueryPart));
    if (className != nullptr) {
        query.append(className, wcsnlen(className, kMaxQueryPart));
    }
    constexpr wchar_t kLanguage[] = L"WQL";
    const OwnedBstr language(kLanguage, std::size(kLanguage) - 1);
    const OwnedBstr text(query.data(), query.size());

    // The enumerator keeps what it needs of the services; they are released on return.
    ComPtr<IEnumWbemClassObject> enumerator;
    const HRESULT result = services->ExecQuery(
        language.get(), text.get(), WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, &enumerator);
    if (FAILED(result)) {
        Warn("EnumClassObject", L"IWbemServices->ExecQuery", result);
        return nullptr;
    }
    return enumerator;
}

uint32_t PublicWmi::GetPropertyValue(const wchar_t* className, const wchar_t* propertyName, Document& response)
{
    uint32_t status = StatusInvalidArgument;

    // Declared first so that it is left last, after every COM object below is released.
    const MultithreadedApartment apartment;
    if (FAILED(apartment.result())) {
        Warn("GetPropertyValue", L"CoInitializeEx", apartment.result());
    }

    const ComPtr<IEnumWbemClassObject> enumerator = EnumClassObject(className, status);
    if (!enumerator) {
        return status;
    }

    auto& allocator = response.GetAllocator();
    JsonArray values(rapidjson::kArrayType);
    for (;;) {
        ComPtr<IWbemClassObject> object;
        ULONG returned = 0;
        const HRESULT next = enumerator->Next(WBEM_INFINITE, 1, &object, &returned);
        if (FAILED(next)) {
            Warn("GetPropertyValue", L"IEnumWbemClassObject->Next", next);
            return StatusAfterNextFailure(next, status);
        }
        if (returned == 0 || !object) {
            if (status == StatusSuccess) {
                if (!response.IsObject()) {
                    response.SetObject();
                }
                response.AddMember(L"result", values, allocator);
            }
            return status;
        }

        OwnedVariant value;
        const HRESULT got = object->Get(propertyName, 0, &value.get(), nullptr, nullptr);
        if (FAILED(got)) {
            Warn("GetPropertyValue", L"IWbemClassObject->Get", got);
            return StatusAfterGetFailure(got, status);
        }
        if (IsSupportedArray(value.get().vt)) {
            if (GetSafeArrayData(value.get(), values, response)) {
                status = StatusSuccess;
            }
        } else if (AppendScalar(value.get(), values, allocator)) {
            status = StatusSuccess;
        }
    }
}

bool PublicWmi::GetSafeArrayData(const VARIANT& value, JsonArray& into, Document& response)
{
    if (!IsSupportedArray(value.vt)) {
        return false;
    }
    SAFEARRAY* const array = value.parray;
    void* data = nullptr;
    HRESULT result = SafeArrayAccessData(array, &data);
    if (FAILED(result)) {
        // The label names one element type whatever the array holds; readers of the log
        // search for it as it is.
        Warn("GetSafeArrayData", L"SafeArrayAccessData(VT_ARRAY | VT_UI1)", result);
        return false;
    }

    bool lastFetched = false;
    const ULONG count = array->rgsabound[0].cElements;
    if (count > 0) {
        auto& allocator = response.GetAllocator();
        JsonArray nested(rapidjson::kArrayType);
        const VARTYPE elementType = value.vt & ~VT_ARRAY;
        for (LONG index = 0; index < static_cast<LONG>(count); ++index) {
            // Each element lands in the variant's value slot, typed so that clearing the
            // variant frees a fetched string.
            OwnedVariant element;
            result = SafeArrayGetElement(array, &index, &element.get().llVal);
            if (FAILED(result)) {
                Warn("GetSafeArrayData", L"SafeArrayGetElement", result);
                lastFetched = false;
                break;
            }
            element.get().vt = elementType;
            AppendScalar(element.get(), nested, allocator);
            lastFetched = true;
        }
        into.PushBack(nested, allocator);
    }

    result = SafeArrayUnaccessData(array);
    if (FAILED(result)) {
        Warn("GetSafeArrayData", L"SafeArrayUnaccessData", result);
    }
    return lastFetched;
}

}  // namespace Xelto::Spanlet::Server::Shared::WMI
