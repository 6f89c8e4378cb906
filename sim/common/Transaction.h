// Building blocks the fake drivers share: one transaction record under construction, and the
// profile sections they read and change in place.
#pragma once

#include "LumavenRapidJson.h"

#include <cstdint>
#include <string>
#include <vector>

namespace LumavenSim {

// {"lib": library, "call": call, ...members..., "result": N}, appended to the log by Done.
class Transaction {
public:
    Transaction(const std::string& library, const char* call);

    Transaction& Add(const char* name, rapidjson::Value value);
    Transaction& Int(const char* name, int64_t value) { return Add(name, rapidjson::Value(value)); }
    Transaction& Bool(const char* name, bool value) { return Add(name, rapidjson::Value(value)); }
    Transaction& Text(const char* name, const std::string& value);
    // Says why the driver does not accept the call: the "refused" member.
    Transaction& Refused(const std::string& reason) { return Text("refused", reason); }

    // Records the result and writes the record; hands the result back.
    template <class Result>
    Result Done(Result result)
    {
        Int("result", static_cast<int64_t>(result));
        Write();
        return result;
    }
    // Writes the record as it stands, for calls without a result.
    void Write();

private:
    rapidjson::Document m_doc;
};

// The object member `name` of the state, made empty when absent or of another type.
rapidjson::Value& Section(rapidjson::Document& state, const char* name);
// The objects of the array member `arrayName` of `parent`, in order.
std::vector<rapidjson::Value*> ObjectsIn(rapidjson::Value& parent, const char* arrayName);

// For a fake's DllMain: counts "loads" and "unloads" in its section, so tests can tell how
// often the service loaded it. Only FreeLibrary counts as an unload; at process exit the
// state is left alone.
void CountLoadsAndUnloads(const char* section, unsigned long reason, void* reserved);

}  // namespace LumavenSim
