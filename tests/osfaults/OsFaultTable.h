// The OS fault table: each row makes one function that LumavenService.dll imports (or one
// method of a WMI object it receives) fail as the real one fails, or answer as a working but
// hostile system may, while one entry point of the service runs on a simulated laptop, and
// states what the service must show for it. Every row is also checked for what no row may
// do: leave a block, a key, a device set or a library reference behind, or answer
// differently once the function works again.
#pragma once

#include "EntryRun.h"
#include "ImportHooks.h"

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace LumavenOsFaults {

enum class Laptop { Intel, Amd };

// The "OLED" value before the entry point runs and after it.
enum class Oled { Absent, Zero, One };

// The thread the entry point runs on, as far as COM is concerned.
enum class Apartment {
    None,  // outside COM, as a host's thread usually is
    // In the multithreaded apartment by one join of the test's that the entry point's own
    // leave takes off: what a thread has when the service's join is refused.
    JoinedOnce,
};

struct OsFaultRow {
    // The hooked function: an import's name, or "IWbemServices::ExecQuery" and the like.
    const char* function;
    // Which call fails and how. A row with `counted` set fails nothing and checks instead that
    // the function is called exactly as often as its partner (an init and its leave).
    Failure failure{};
    const char* counted = nullptr;
    // Answers of a working system that only hostile drivers or providers give.
    bool propertyAsArray = false;
    DWORD classGuidCount = 0;

    Laptop laptop = Laptop::Intel;
    Entry run = Entry::Command;
    uint32_t command = 0;
    const wchar_t* request = L"{}";
    Oled before = Oled::Zero;
    Apartment apartment = Apartment::None;

    // What must follow. The factory: whether a service came back. Startup: the exception that
    // leaves it, if any ("_com_error(E_OUTOFMEMORY)"). A command: status and response text
    // (null: no text).
    bool created = true;
    const char* thrown = "";
    uint32_t status = 0;
    const wchar_t* response = L"{}";
    // Every log line of the entry point, in order: "I:", "W:" or "E:" and the rendered text.
    std::vector<std::wstring> logs;
    Oled after = Oled::Zero;
    // Libraries the service deliberately keeps a reference to when it is unloaded.
    std::vector<std::string> keptLibraries;
};

const std::vector<OsFaultRow>& OsFaultTable();

}  // namespace LumavenOsFaults
