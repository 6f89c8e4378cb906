// Proves that a ctl* forwarder hands its arguments to the simulated driver unchanged and hands
// the driver's result back unchanged. Each forwarder is called with arguments that no other
// call uses (pointer values, the double's bits, the 24-byte record's fields, 32-bit values),
// and the simulated driver's record of the call is compared with them. The simulated driver
// answers every forwarded entry point with a code of its own, injected by the profile.
#pragma once

#include "SimMachine.h"
#include "SimState.h"
#include "intel/ControlLibFunctions.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace LumavenTest::ControlLibProof {

#define LUMAVEN_PROOF_NAME(name, ...) #name,
// All 93 entry points of the table, and the 90 forwarded ones, in table order.
inline std::vector<std::string> EntryPointNames()
{
    return {LUMAVEN_CTL_FUNCTIONS(LUMAVEN_PROOF_NAME, LUMAVEN_PROOF_NAME)};
}
inline std::vector<std::string> ForwardedNames()
{
    return {LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_PROOF_NAME)};
}
#undef LUMAVEN_PROOF_NAME

// The code the simulated driver answers for the index-th forwarded entry point.
inline uint32_t DriverResult(int index)
{
    return 0x7E500000u + static_cast<uint32_t>(index);
}

// A profile that installs `library` (a file of bin\sim) as ControlLib.dll and makes each
// forwarded entry point answer its own code before it looks at any argument.
inline LumavenSim::Profile::Machine Profile(const std::string& library)
{
    LumavenSim::Profile::Machine machine{.libraries = {{"ControlLib.dll", library}},
                                         .intel = LumavenSim::Profile::Intel{}};
    int index = 0;
    for (const std::string& name : ForwardedNames()) {
        machine.faults.push_back({.function = name, .code = DriverResult(index)});
        ++index;
    }
    return machine;
}

// An argument value of type T that belongs to this entry point and parameter alone.
template <class T>
T DistinctArgument(int function, int parameter)
{
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(static_cast<uintptr_t>(0x00005EED00000008ull) |
                                   static_cast<uintptr_t>(function) << 12 | static_cast<uintptr_t>(parameter) << 4);
    } else if constexpr (std::is_same_v<T, double>) {
        // Thirds use every bit of the mantissa, so a value rounded on the way shows.
        return (function + 1) / 3.0 + parameter * 1000.0;
    } else if constexpr (std::is_same_v<T, ctl_oc_vf_pair_t>) {
        ctl_oc_vf_pair_t pair{};
        pair.Size = sizeof pair;
        pair.Version = static_cast<uint8_t>(0xA0 + function % 32);
        pair.Voltage = 0.8 + function / 7.0;
        pair.Frequency = 1650.0 + function / 3.0;
        return pair;
    } else {
        static_assert(std::is_same_v<T, uint32_t> || std::is_enum_v<T>, "a parameter type the table does not use");
        return static_cast<T>(0xC0DE0000u | static_cast<uint32_t>(function) << 4 | static_cast<uint32_t>(parameter));
    }
}

// The simulated driver's spelling of a double: its 64 bits as 16 hex digits, high first.
inline std::string Bits(double value)
{
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    char text[20];
    std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(bits));
    return text;
}

inline std::string RecordedBits(const rapidjson::Value& recorded)
{
    return recorded.IsObject() && recorded.HasMember("bits") && recorded["bits"].IsString()
               ? recorded["bits"].GetString()
               : std::string("(not a double)");
}

template <class T>
void ExpectArgument(const rapidjson::Value& recorded, const T& value, const std::string& where)
{
    if constexpr (std::is_pointer_v<T>) {
        ASSERT_TRUE(recorded.IsUint64()) << where;
        EXPECT_EQ(recorded.GetUint64(), static_cast<uint64_t>(reinterpret_cast<uintptr_t>(value))) << where;
    } else if constexpr (std::is_same_v<T, double>) {
        EXPECT_EQ(RecordedBits(recorded), Bits(value)) << where;
    } else if constexpr (std::is_same_v<T, ctl_oc_vf_pair_t>) {
        ASSERT_TRUE(recorded.IsObject() && recorded.HasMember("Size") && recorded.HasMember("Version") &&
                    recorded.HasMember("Voltage") && recorded.HasMember("Frequency"))
            << where;
        EXPECT_EQ(recorded["Size"].GetUint(), value.Size) << where;
        EXPECT_EQ(recorded["Version"].GetUint(), value.Version) << where;
        EXPECT_EQ(RecordedBits(recorded["Voltage"]), Bits(value.Voltage)) << where;
        EXPECT_EQ(RecordedBits(recorded["Frequency"]), Bits(value.Frequency)) << where;
    } else {
        ASSERT_TRUE(recorded.IsUint()) << where;
        EXPECT_EQ(recorded.GetUint(), static_cast<uint32_t>(value)) << where;
    }
}

template <class... Args, size_t... I>
ctl_result_t CallDistinct(ctl_result_t(CTL_APICALL* function)(Args...), int index, std::index_sequence<I...>)
{
    return function(DistinctArgument<Args>(index, static_cast<int>(I))...);
}

// Calls `function` with the index-th entry point's distinct arguments.
template <class... Args>
ctl_result_t CallDistinct(ctl_result_t(CTL_APICALL* function)(Args...), int index)
{
    return CallDistinct(function, index, std::index_sequence_for<Args...>{});
}

template <class... Args, size_t... I>
void Prove(const std::string& name, ctl_result_t(CTL_APICALL* function)(Args...), int index, std::index_sequence<I...>)
{
    const std::tuple<Args...> args{DistinctArgument<Args>(index, static_cast<int>(I))...};
    LumavenSim::ClearTransactions();
    const ctl_result_t result = function(std::get<I>(args)...);
    EXPECT_EQ(static_cast<uint32_t>(result), DriverResult(index)) << name;
    const auto records = LumavenSim::TransactionLog::Read().Records();
    ASSERT_EQ(records.size(), 1u) << name << ": the simulated driver should have seen exactly this call";
    const LumavenSim::TransactionRecord& record = records[0];
    ASSERT_TRUE(record.Has("call") && record.Has("args") && record.Has("result")) << name;
    EXPECT_EQ(record.Call(), name);
    EXPECT_EQ(record["result"].GetUint(), DriverResult(index)) << name;
    ASSERT_TRUE(record["args"].IsArray()) << name;
    ASSERT_EQ(record["args"].Size(), sizeof...(Args)) << name;
    (ExpectArgument(record["args"][static_cast<rapidjson::SizeType>(I)], std::get<I>(args),
                    name + " parameter " + std::to_string(I + 1)),
     ...);
}

// Calls the forwarder with distinct arguments and checks what reached the simulated driver and
// what came back. The profile of Profile() must be installed and the library loaded.
template <class... Args>
void Prove(const std::string& name, ctl_result_t(CTL_APICALL* function)(Args...), int index)
{
    Prove(name, function, index, std::index_sequence_for<Args...>{});
}

}  // namespace LumavenTest::ControlLibProof
