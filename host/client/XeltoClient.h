// The host's side of the contract in one place: the service DLL loaded and a service made by
// its factory, one command run with its response copied and the buffer given back, and a
// display-power or lid notification built as Windows builds it. The reference host, the
// benchmark, the simulator's demo and every test suite drive the service through this, so
// that a change to how the service is called is made once.
#pragma once

#include "xelto/XeltoService.h"

#include <windows.h>

#include <cstdint>
#include <string>

namespace XeltoClient {

// The exit codes of the project's host programs (xelto-host, lumaven-bench): the action ran,
// the arguments were wrong, the service is unavailable (its DLL, factory or service missing).
inline constexpr int kExitOk = 0;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitUnavailable = 3;

// What a host passes as the context word unless it says otherwise.
inline constexpr uint64_t kContextWord = 1;

// What came back from one ExecuteCommand call.
struct Reply {
    uint32_t status = 0;
    bool outStringWritten = false;  // the service stored anything into *outString (a text or null)
    bool hasResponse = false;       // ... a text, copied here and given back to the service
    std::wstring response;
    unsigned callbackCalls = 0;  // the contract's callback is never called; counted when given
};

// One ExecuteCommand call with every argument a host may pass, null ones included.
struct Call {
    uint32_t command = 0;
    const wchar_t* request = L"{}";  // null passes no message
    uint64_t contextWord = kContextWord;
    bool withContext = true;    // false passes a null context
    bool withOutString = true;  // false passes a null outString
    bool withCallback = false;  // a callback that counts its calls
    uint64_t extra = 0;
};

Reply Execute(Xelto::Spanlet::Server::Services::XeltoService& service, const Call& call);
// The ordinary call: a context, the request, an outString, no callback.
Reply RunCommand(Xelto::Spanlet::Server::Services::XeltoService& service, uint32_t command,
                 const wchar_t* request = L"{}", uint64_t contextWord = kContextWord);

// The two power settings the service acts on, typed from their text form rather than taken
// from the SDK's symbols, so that a wrong constant in the service is not matched by the same
// wrong constant on the host's side.
// {6FE69556-704A-47A0-8F24-C28D936FDA47}: the console display switched off (0) or on (1).
inline constexpr GUID kConsoleDisplayState{
    0x6FE69556, 0x704A, 0x47A0, {0x8F, 0x24, 0xC2, 0x8D, 0x93, 0x6F, 0xDA, 0x47}};
// {BA3E0F4D-B817-4094-A2D1-D56379E6A0F3}: the lid closed (0) or opened (1).
inline constexpr GUID kLidSwitchStateChange{
    0xBA3E0F4D, 0xB817, 0x4094, {0xA2, 0xD1, 0xD5, 0x63, 0x79, 0xE6, 0xA0, 0xF3}};

enum class PowerEvent { DisplayOff, DisplayOn, LidClosed, LidOpen };

// The POWERBROADCAST_SETTING the system sends: the setting's GUID, DataLength 4, one DWORD.
struct PowerSettingRecord {
    POWERBROADCAST_SETTING header;
    BYTE rest[3];
};
PowerSettingRecord MakePowerSetting(const GUID& setting, DWORD data);
PowerSettingRecord MakePowerSetting(PowerEvent event);

uint32_t Deliver(Xelto::Spanlet::Server::Services::XeltoService& service, const GUID& setting, DWORD data);
uint32_t Deliver(Xelto::Spanlet::Server::Services::XeltoService& service, PowerEvent event);

// The path of a file named `name` in the folder of the running program: where a host finds
// the service DLL by default.
std::wstring BesideThisProgram(const wchar_t* name);

// A service DLL loaded and one service made by its factory; the service is destroyed with
// this object.
class LoadedService {
public:
    // What becomes of the DLL when this object goes. A host keeps it to its own end, as the
    // Xelto host does; a test unloads it, which ends what the service keeps for the process
    // (ADLX) as a host's exit does, so that the next test starts afresh.
    enum class AtEnd { Unload, KeepLoaded };

    LoadedService() = default;
    ~LoadedService();
    LoadedService(const LoadedService&) = delete;
    LoadedService& operator=(const LoadedService&) = delete;

    // Loads the DLL (a path or a name the loader searches for) and calls its factory. False
    // with a one-line reason when the DLL or its factory is missing or the factory answers null.
    bool Create(const std::wstring& dllPath, std::string& reason, AtEnd atEnd = AtEnd::Unload);
    bool Created() const { return m_service != nullptr; }
    void Startup();
    Reply Run(uint32_t command, const wchar_t* request = L"{}", uint64_t contextWord = kContextWord);
    uint32_t Deliver(const GUID& setting, DWORD data);
    uint32_t Deliver(PowerEvent event);
    // Destroys the service; the DLL stays as `AtEnd` says until this object goes.
    void Destroy();

    // The contract object itself, for callers that pass what a well-behaved host never would.
    Xelto::Spanlet::Server::Services::XeltoService& Service() { return *m_service; }
    // The DLL's factory, for callers that make further instances (the start-up benchmark).
    XeltoCreateServiceFunction Factory() const { return m_factory; }

private:
    HMODULE m_module = nullptr;
    AtEnd m_atEnd = AtEnd::Unload;
    XeltoCreateServiceFunction m_factory = nullptr;
    Xelto::Spanlet::Server::Services::XeltoService* m_service = nullptr;
};

}  // namespace XeltoClient
