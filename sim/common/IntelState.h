// The simulated Intel driver's part of the shared state: the profile's "intel" section, which
// the fake ControlLib.dll reads and changes in place (panel registers, DPST/OPST state, load
// counters), and readers for tests and `lumaven-sim show`. The section's fields are described
// in sim/README.md.
#pragma once

#include "LumavenRapidJson.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace LumavenSim::Intel {

// DPST sub-feature bit of OPST.
constexpr uint32_t kOpst = 0x4;

// The "intel" section; made empty when the profile has none.
rapidjson::Value& Section(rapidjson::Document& state);

size_t AdapterCount(const rapidjson::Document& state);
size_t OutputCount(const rapidjson::Document& state, size_t adapter);
// One display output's object, or null when the indices are out of range.
rapidjson::Value* Output(rapidjson::Document& state, size_t adapter, size_t output);
const rapidjson::Value* Output(const rapidjson::Document& state, size_t adapter, size_t output);

// A boolean field of an output, `fallback` when absent.
bool OutputFlag(const rapidjson::Value& output, const char* name, bool fallback);
bool Attached(const rapidjson::Value& output);
bool Active(const rapidjson::Value& output);
bool DpstSupported(const rapidjson::Value& output);
// The DPST sub-features the panel supports, and those that are on.
uint32_t DpstSupportedFeatures(const rapidjson::Value& output);
uint32_t DpstEnabledFeatures(const rapidjson::Value& output);
void SetDpstEnabledFeatures(rapidjson::Document& state, rapidjson::Value& output, uint32_t features);

// The panel's DPCD register file: address -> byte; registers never written read 0.
using RegisterFile = std::map<uint32_t, uint8_t>;
RegisterFile Registers(const rapidjson::Value& output);
void StoreRegisters(rapidjson::Document& state, rapidjson::Value& output, const RegisterFile& registers);

// The result the profile chooses for an entry point the simulated driver does not act on.
std::optional<uint32_t> ChosenResult(const rapidjson::Document& state, const char* function);

// A counter of the section ("loads", "unloads"); IncrementCounter adds one.
int64_t Counter(const rapidjson::Document& state, const char* name);
void IncrementCounter(rapidjson::Document& state, const char* name);

// Readers that take the state lock themselves, for tests.
std::vector<uint8_t> ReadRegisters(size_t adapter, size_t output, uint32_t address, size_t count);
bool OpstEnabled(size_t adapter, size_t output);
int64_t Counter(const char* name);

// The adapters, outputs, panel registers, OPST state and load counters as readable lines.
std::string Describe(const rapidjson::Document& state);

}  // namespace LumavenSim::Intel
