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

inline std::string Call(const rapidjson::Document& record)
{
    return record.HasMember("call") && record["call"].IsString() ? record["call"].GetString() : "";
}

// The names of the logged calls, in order.
inline std::vector<std::string> Calls()
{
    std::vector<std::string> calls;
    for (const rapidjson::Document& record : Transactions()) {
        calls.push_back(Call(record));
    }
    return calls;
}

// The logged records of one call, in order.
inline std::vector<rapidjson::Document> RecordsOf(const std::string& call)
{
    std::vector<rapidjson::Document> records;
    for (rapidjson::Document& record : Transactions()) {
        if (Call(record) == call) {
            records.push_back(std::move(record));
        }
    }
    return records;
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

}  // namespace LumavenTest::Amd
