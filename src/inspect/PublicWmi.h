// Reads one property of every instance of a WMI class on the local machine into a JSON
// array. The service asks it one question only (the names of the video controllers); every
// COM failure on the way is logged as one warning and turned into a status code.
#pragma once

#include "service/Json.h"
#include "service/Status.h"

#include "xelto/Logging.h"

#include <windows.h>
#include <wbemidl.h>
#include <wrl/client.h>

#include <cstdint>
#include <string>

namespace Xelto::Spanlet::Server::Shared::WMI {

using Services::Lumaven::Document;
// A JSON value of array type in a response document.
using JsonArray = Services::Lumaven::JsonValue;

using Services::Lumaven::StatusInvalidArgument;
using Services::Lumaven::StatusSuccess;
inline constexpr uint32_t StatusWmiPropertyNotFound = 0x2000000d;
inline constexpr uint32_t StatusWmiInvalidClass = 0x2000000f;
inline constexpr uint32_t StatusWmiInvalidQuery = 0x20000010;
inline constexpr uint32_t StatusWmiInvalidNamespace = 0x20000012;

inline constexpr wchar_t kDefaultWmiNamespace[] = L"ROOT\\CIMV2";

// How a failed COM call changes the query's status; `status` is the status so far. Only the
// HRESULTs that say something about the caller's question get a status of their own.
uint32_t StatusAfterConnectFailure(HRESULT result, uint32_t status);
uint32_t StatusAfterNextFailure(HRESULT result, uint32_t status);
uint32_t StatusAfterGetFailure(HRESULT result, uint32_t status);
// Whether a CoInitializeSecurity answer is worth a warning: RPC_E_TOO_LATE only says that
// this process has set its security already, which is what the query needs.
bool SecurityFailureIsLogged(HRESULT result);

class PublicWmi {
public:
    // The namespace is fixed for the service; another one only shows how a missing
    // namespace is handled.
    explicit PublicWmi(const wchar_t* wmiNamespace = kDefaultWmiNamespace);

    // A connected services pointer with its proxy secured, or null. Sets `status` to
    // StatusWmiInvalidNamespace when the namespace does not exist, else leaves it.
    Microsoft::WRL::ComPtr<IWbemServices> ConnectToWmi(uint32_t& status);
    // A forward-only enumerator over all instances of `className`, or null.
    Microsoft::WRL::ComPtr<IEnumWbemClassObject> EnumClassObject(const wchar_t* className, uint32_t& status);
    // Collects the property of every instance into response["result"] (only when at least
    // one value was collected). Joins the multithreaded apartment for the call.
    uint32_t GetPropertyValue(const wchar_t* className, const wchar_t* propertyName, Document& response);
    // Appends the elements of an array-valued property to `into` as one nested array. True
    // when the array had elements and the last one was fetched.
    bool GetSafeArrayData(const VARIANT& value, JsonArray& into, Document& response);

private:
    void Warn(const char* operation, const wchar_t* label, HRESULT result) const;

    TraceLogger* m_logger;
    std::string m_typeName;
    const wchar_t* m_namespace;
};

}  // namespace Xelto::Spanlet::Server::Shared::WMI
