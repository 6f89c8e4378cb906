// The simulated laptop's shared state: the installed machine profile with the fake drivers'
// mutable state (registers, feature states, call counters), and the transaction log of the
// vendor calls that matter. Both live in files under the prefix's Windows folder, so they
// survive the service loading and unloading a fake library on every command, and another
// process (the host, `lumaven-sim show`, a test) can read them. A named mutex serialises
// access across processes.
#pragma once

#include "LumavenRapidJson.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace LumavenSim {

// %WINDIR%\LumavenSim
std::wstring StateDirectory();
std::wstring StateFile();
std::wstring TransactionFile();

// Runs `use` on the state under the cross-process lock. When `use` returns true the state is
// written back. A missing or unreadable state reads as an empty object.
void WithState(const std::function<bool(rapidjson::Document& state)>& use);
// Replaces the whole state and clears the transaction log (used by the installer).
void ResetState(const rapidjson::Document& state);

// Counts one call of `function` and answers the fault the profile injects into this call, if
// any. Profile faults: [{"function": name, "code": N, "nth": K}]; without "nth" (or with 0)
// every call fails, else only the K-th call (1-based) since the profile was installed.
std::optional<int64_t> TakeFault(rapidjson::Document& state, const char* function);
// The count an enumeration reports instead of the one it has, when the profile sets one for
// this call. Profile counts: [{"function": name, "call": "count" | "fill", "answer": N,
// "nth": K}]: the call that asks for the count (no array) reports N, or the call that fills an
// array finds N entries to write, on every such call (without "nth", or 0) or only when it is
// the function's K-th call since the install. Asked after TakeFault, which counts the call.
std::optional<int64_t> CountAnswer(const rapidjson::Document& state, const char* function, const char* call);
// How many times `function` has been called since the profile was installed.
int64_t CallCount(const rapidjson::Document& state, const char* function);

// Appends one record (a JSON object written compactly) to the transaction log, with the
// member "time" added: TransactionClock() when the record was written.
void AppendTransaction(const rapidjson::Value& record);
// Microseconds of the performance counter: one clock for every process of the machine, so a
// test can compare the time of a driver call with a time it took itself.
int64_t TransactionClock();
// Every record of the log, in order, as compact JSON texts.
std::vector<std::string> ReadTransactions();
void ClearTransactions();

// Whether this process runs under Wine (ntdll exports wine_get_version).
bool RunningUnderWine();

// Helpers for byte strings kept as hex in the profile and the log.
std::vector<uint8_t> HexToBytes(const std::string& hex);
std::string BytesToHex(const uint8_t* bytes, size_t count);

}  // namespace LumavenSim
