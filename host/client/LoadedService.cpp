#include "XeltoClient.h"

namespace XeltoClient {

std::wstring BesideThisProgram(const wchar_t* name)
{
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program(path, length);
    return program.substr(0, program.find_last_of(L"\\/") + 1) + name;
}

LoadedService::~LoadedService()
{
    Destroy();
    if (m_module != nullptr && m_atEnd == AtEnd::Unload) {
        FreeLibrary(m_module);
    }
}

bool LoadedService::Create(const std::wstring& dllPath, std::string& reason, AtEnd atEnd)
{
    m_atEnd = atEnd;
    m_module = LoadLibraryW(dllPath.c_str());
    if (m_module == nullptr) {
        reason = "cannot load the service DLL (error " + std::to_string(GetLastError()) + ")";
        return false;
    }
    m_factory = reinterpret_cast<XeltoCreateServiceFunction>(
        reinterpret_cast<void*>(GetProcAddress(m_module, "XeltoCreateService")));
    if (m_factory == nullptr) {
        reason = "the DLL does not export XeltoCreateService";
        return false;
    }
    m_service = m_factory();
    if (m_service == nullptr) {
        reason = "the service is unavailable on this machine (XeltoCreateService returned null)";
        return false;
    }
    return true;
}

void LoadedService::Startup()
{
    m_service->startup_task();
}

Reply LoadedService::Run(uint32_t command, const wchar_t* request, uint64_t contextWord)
{
    return XeltoClient::RunCommand(*m_service, command, request, contextWord);
}

uint32_t LoadedService::Deliver(const GUID& setting, DWORD data)
{
    return XeltoClient::Deliver(*m_service, setting, data);
}

uint32_t LoadedService::Deliver(PowerEvent event)
{
    return XeltoClient::Deliver(*m_service, event);
}

void LoadedService::Destroy()
{
    delete m_service;
    m_service = nullptr;
}

}  // namespace XeltoClient
