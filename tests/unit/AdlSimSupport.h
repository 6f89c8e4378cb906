// What the AMD suites read back from the simulated laptop: the fake drivers' state and the
// records of their transaction log.
#pragma once

#include "SimMachine.h"
#include "SimState.h"

#include "LumavenRapidJson.h"

#include <string>
#include <vector>

namespace LumavenTest::Amd {

// A copy of the whole simulated state.
inline rapidjson::Document State()
{
    rapidjson::Document copy;
    LumavenSim::WithState([&copy](rapidjson::Document& state) {
        copy.CopyFrom(state, copy.GetAllocator());
        return false;
    });
    return copy;
}

// A counter or number of the state under section.name; 0 when absent.
inline int64_t StateNumber(const char* section, const char* name)
{
    const rapidjson::Document state = State();
    if (!state.HasMember(section) || !state[section].IsObject() || !state[section].HasMember(name) ||
        !state[section][name].IsInt64()) {
        return 0;
    }
    return state[section][name].GetInt64();
}

// The names of the logged calls, in order.
inline std::vector<std::string> Calls()
{
    return LumavenSim::TransactionLog::Read().CallNames();
}

// The logged records of one call, in order.
inline std::vector<LumavenSim::TransactionRecord> RecordsOf(const std::string& call)
{
    return LumavenSim::TransactionLog::Read().CallsOf(call);
}

inline int64_t Number(const rapidjson::Value& record, const char* name)
{
    return record.HasMember(name) && record[name].IsInt64() ? record[name].GetInt64() : -999999;
}

inline std::string Text(const rapidjson::Value& record, const char* name)
{
    return record.HasMember(name) && record[name].IsString() ? record[name].GetString() : "(none)";
}

inline bool Flag(const rapidjson::Value& record, const char* name)
{
    return record.HasMember(name) && record[name].IsBool() && record[name].GetBool();
}

// The same for a logged record; the fallbacks are values no record carries, so that a missing
// member never passes for an expected one.
inline int64_t Number(const LumavenSim::TransactionRecord& record, const char* name)
{
    return record.Number(name, -999999);
}

inline std::string Text(const LumavenSim::TransactionRecord& record, const char* name)
{
    return record.String(name, "(none)");
}

inline bool Flag(const LumavenSim::TransactionRecord& record, const char* name)
{
    return record.Flag(name);
}

}  // namespace LumavenTest::Amd
