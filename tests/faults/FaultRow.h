// One row of the injected-fault table: a simulated laptop, one vendor call (or registry
// condition) made to fail, the command or event that meets it, and everything the service
// must leave behind: status, response, log lines, the stored setting, the vendor calls it
// made, the panel's state and which vendor libraries are still loaded.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace LumavenFaults {

// The simulated laptops. Intel machines carry panel 0x4160834C (a four-write sequence whose
// first write is read back), AMD machines panel 0x416C834C (five one-byte writes).
enum class Machine {
    IntelOpstOff,      // one adapter, one attached output, OPST supported and off, registers 0
    IntelOpstOn,       // the same with OPST on
    IntelTwoAdapters,  // two adapters with one such output each
    IntelPanel4174,    // panel 0x4174834C: one write of one byte, register 0x4027 = 00
    IntelNoAdapters,   // panel 0x4160834C, and a control library that lists no adapter
    AmdPanelOff,       // one adapter, one mapped display; 0x045A = 00; VariBright off, "balanced"
    AmdPanelOn,        // the same with 0x045A = C0 and VariBright on
};

// The "OLED" value: arranged before the action and expected after it.
enum class Oled {
    Absent,
    Zero,
    One,
    Sz1,      // REG_SZ "1" (4 bytes with its terminator: fits the reader's buffer)
    Sz10,     // REG_SZ "10" (6 bytes)
    Binary1,  // REG_BINARY 01 00 00 00
    Dword8,   // REG_DWORD of 8 bytes, 1
    Qword1,   // REG_QWORD 1
    // "OLED" = 1 in a key whose DACL refuses KEY_SET_VALUE to everyone, so that opening it with
    // KEY_ALL_ACCESS fails. Expected after: One.
    DenyWrite,
    // No key, and its parent "SOFTWARE\Xelto" is volatile: a non-volatile key cannot be created
    // under it. Expected after: Absent.
    VolatileParent,
};

enum class Act {
    Command,           // ExecuteCommand(command, request)
    Event,             // oled_power_event_task: display on, after start
    SetOnReadOnlyKey,  // SetSettingsDword on the settings key opened with KEY_READ; status = its result
    OpenUnusablePath,  // OpenOrCreateSettingsKey on a path the registry refuses; status = a key came back
};

struct Action {
    Act kind = Act::Command;
    uint32_t command = 0;
    const wchar_t* request = L"{}";
};

// What runs on the machine before the faults are armed (its outcome is checked to be a success).
enum class Arrange {
    None,
    AdlxInitialized,   // command 10 on AMD: ADLX loaded, display services and display taken
    OpstRecordFilled,  // command 8 on Intel: the shared OPST settings record holds the panel's answer
};

// A fault of a simulated driver: `function` answers `code` on its `nth` call counted from the
// arming (every call when 0). A function named "name#count" or "name#fill" is not failed: that
// enumeration's count call (or its fill call) succeeds and finds `code` entries instead of the
// machine's own, on the function's `nth` call (every such call when 0).
struct Fault {
    const char* function;
    int64_t code;
    int nth = 0;
};

// Written with designated initializers, field by field; the three left out most often default
// to a row that changes no library, injects no fault and arranges nothing.
struct FaultRow {
    // The fault point the row covers, "path|entry|code" as listed by FaultPoints(); empty for a
    // row that shows a further case of a point already counted.
    std::string point = {};
    Machine machine;
    // Changes to the machine's libraries, "system32 name=file in bin\sim" separated by blanks;
    // "name=" leaves the library out.
    std::string drivers = {};
    std::vector<Fault> faults = {};
    Arrange arrange = Arrange::None;
    Oled before;
    Action action;
    uint32_t status;
    // The response text exactly; null when the action hands back none.
    const wchar_t* response;
    // Every log line of the action, in order: "I:", "W:" or "E:" and the rendered text. "{X}" and
    // "{x}" stand for the address of the session's status word in upper or lower case hex: the
    // same number in every line of the row, and never an injected code.
    std::vector<std::wstring> logs;
    Oled after;
    // The vendor calls made, in order, as tokens (see FaultRunner.cpp); "!" marks a call that
    // answered non-zero.
    std::string trace;
    // Panel state after: "I404B=7C84CC" (Intel adapter 0 output 0 registers; "I1:..." adapter 1),
    // "OPST=1", "A045A=C0" (AMD display registers), "VB=1", "MODE=maximizeBattery".
    std::string panel;
    // "+name" must be loaded in the process after the action, "-name" must not.
    std::string loaded;
};

// The fault points: every vendor entry point the service calls on each command path, times
// the codes that select a different defined behaviour. The total of the report.
const std::vector<std::string>& FaultPoints();
// The rows.
const std::vector<FaultRow>& FaultTable();

}  // namespace LumavenFaults
