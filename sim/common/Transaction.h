// Building blocks the fake drivers share: the one writer of transaction records, and the
// profile sections they read and change in place.
#pragma once

#include "LumavenRapidJson.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace LumavenSim {

// One call's record, the only way a fake writes the transaction log:
// {"lib": library, "call": call, ...members..., "args": [...], "result": N}, appended to the log
// by Done (or Write). "args" is there only for a call that records its raw arguments.
class Transaction {
public:
    Transaction(const std::string& library, const char* call);

    const char* Call() const { return m_call; }
    rapidjson::Document::AllocatorType& Allocator() { return m_doc.GetAllocator(); }

    // Sets the member `name`; a member set twice keeps its last value, written last.
    Transaction& Add(const char* name, rapidjson::Value value);
    Transaction& Int(const char* name, int64_t value) { return Add(name, rapidjson::Value(value)); }
    Transaction& Unsigned(const char* name, uint64_t value) { return Add(name, rapidjson::Value(value)); }
    Transaction& Bool(const char* name, bool value) { return Add(name, rapidjson::Value(value)); }
    Transaction& Text(const char* name, const std::string& value);
    // Says why the driver does not accept the call: the "refused" member.
    Transaction& Refused(const std::string& reason) { return Text("refused", reason); }

    // Appends one raw argument to "args" (which the record then carries, even when empty).
    Transaction& Argument(rapidjson::Value value);
    Transaction& WithArguments();

    // Records the result and writes the record; hands the result back. A result is logged as
    // the number it is: signed results (ADL's codes) as signed, unsigned ones as unsigned.
    template <class Result>
    Result Done(Result result)
    {
        if constexpr (std::is_enum_v<Result>) {
            Finish(Number(static_cast<std::underlying_type_t<Result>>(result)));
        } else {
            Finish(Number(result));
        }
        return result;
    }
    // Writes the record as it stands, for calls without a result.
    void Write() { Finish(rapidjson::Value()); }

private:
    template <class Integer>
    static rapidjson::Value Number(Integer value)
    {
        if constexpr (std::is_signed_v<Integer>) {
            return rapidjson::Value(static_cast<int64_t>(value));
        } else {
            return rapidjson::Value(static_cast<uint64_t>(value));
        }
    }
    void Finish(rapidjson::Value result);

    const char* m_call;
    rapidjson::Document m_doc;
    rapidjson::Value m_args{rapidjson::kArrayType};
    bool m_withArguments = false;
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
