#include "inspect/VendorDetection.h"

#include "inspect/PublicWmi.h"
#include "service/Json.h"
#include "service/LumavenService.h"
#include "service/Status.h"

#include "xelto/Logging.h"

#include <exception>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

constexpr char kQualifiedName[] = "Xelto::Spanlet::Server::Services::Lumaven::LumavenService::CheckVideoControllerType";

}  // namespace

std::vector<std::wstring> ControllerNames(const JsonValue& result)
{
    std::vector<std::wstring> names;
    for (const JsonValue& element : result.GetArray()) {
        names.emplace_back(element.IsString() ? std::wstring(element.GetString(), element.GetStringLength())
                                              : std::wstring());
    }
    return names;
}

int32_t VendorFromControllerNames(const std::vector<std::wstring>& names)
{
    bool amdSeen = false;
    for (const std::wstring& name : names) {
        if (name.find(L"Intel") != std::wstring::npos) {
            return kVendorIntel;
        }
        if (name.find(L"AMD") != std::wstring::npos || name.find(L"Radeon") != std::wstring::npos) {
            amdSeen = true;
        }
    }
    return amdSeen ? kVendorAmd : 0;
}

// Static, so there is no service logger: each line goes to the logger the host hands out at
// that moment.
int32_t LumavenService::CheckVideoControllerType()
{
    int32_t result = 0;
    try {
        Shared::WMI::PublicWmi wmi;
        Document document;
        document.SetObject();
        if (wmi.GetPropertyValue(L"Win32_VideoController", L"Name", document) != StatusSuccess) {
            LogManager::GetLogger()->LogError(L"%S - Failed to retrieve video controller information", kQualifiedName);
        } else if (const JsonValue* names = MemberValue(document, L"result"); names != nullptr && names->IsArray()) {
            result = VendorFromControllerNames(ControllerNames(*names));
        }
        LogManager::GetLogger()->LogInfo(L"%S - The current video controller is %d", kQualifiedName, result);
    } catch (const std::exception& caught) {
        LogManager::GetLogger()->LogError("LumavenService - CheckVideoControllerType threw: %S", caught.what());
    }
    return result;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
