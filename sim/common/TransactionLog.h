// The one reader of the fake drivers' transaction log, for the tests and `lumaven-sim log`.
// Each fake writes its calls through Transaction; this reads them back as records and answers
// the questions the tests ask of them ("AUX writes of output 0", "calls of ctlInit", "refused
// records") in one place, so that a reader never parses a record on its own.
#pragma once

#include "LumavenRapidJson.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace LumavenSim {

// One AUX register access as the driver was asked for it, whichever driver carried it: the
// Intel control library's ctlAUXAccess or ADL's native AUX channel. Whatever is not a write
// (a read, another operation, a call refused before its fields were read) counts as a read.
struct AuxAccess {
    enum class Driver { Intel, Amd };
    Driver driver = Driver::Intel;
    bool write = false;
    int64_t adapter = -1;
    int64_t output = -1;  // the Intel output, or the ADL display
    uint32_t address = 0;
    std::string bytes;  // the bytes written, upper-case hex; empty for a read
    size_t size = 0;    // how many bytes were read or written
    int64_t time = -1;  // when the driver logged it (TransactionClock)
};

// One record: {"lib", "call", what the call did, "refused" when the driver did not accept it,
// "result", "time"}, as the fake wrote it.
class TransactionRecord {
public:
    explicit TransactionRecord(std::string text);

    // The record as written (compact JSON), for messages.
    const std::string& Text() const { return m_text; }
    const rapidjson::Value& Json() const { return *m_json; }
    // The record as compact JSON without these members: for comparing the calls of two callers
    // without what differs between any two (pointers in "args", "time").
    std::string TextWithout(std::initializer_list<const char*> members) const;

    std::string Library() const { return String("lib"); }
    std::string Call() const { return String("call"); }
    bool Refused() const { return Has("refused"); }
    std::string Refusal() const { return String("refused"); }
    // Refused because it reached the library after its own DLL_PROCESS_DETACH.
    bool AfterDetach() const;
    int64_t Result() const { return Number("result"); }

    bool Has(const char* name) const;
    // A member as written (null when missing), for the members of one call's own.
    const rapidjson::Value& operator[](const char* name) const;
    // A number member; `absent` when missing or not an integer.
    int64_t Number(const char* name, int64_t absent = -1) const;
    // A text member; `absent` when missing or not a string.
    std::string String(const char* name, const std::string& absent = "") const;
    // A bool member; false when missing.
    bool Flag(const char* name) const;

    // The AUX access the record carries, if it is a call of an AUX entry point.
    std::optional<AuxAccess> Aux() const;

private:
    std::string m_text;
    std::shared_ptr<const rapidjson::Document> m_json;
};

// Which records to select; an empty or absent part selects any.
struct TransactionQuery {
    std::string lib = {};
    std::string call = {};
    std::optional<bool> refused = {};
};

class TransactionLog {
public:
    // The log as it is now.
    static TransactionLog Read();
    // A log of these records (compact JSON texts, oldest first).
    explicit TransactionLog(const std::vector<std::string>& lines);

    const std::vector<TransactionRecord>& Records() const& { return m_records; }
    // Of a log read for one loop (`for (... : TransactionLog::Read().Records())`): the records
    // move out of it, so that they outlive it.
    std::vector<TransactionRecord> Records() && { return std::move(m_records); }
    bool Empty() const { return m_records.empty(); }
    size_t Size() const { return m_records.size(); }

    std::vector<TransactionRecord> Select(const TransactionQuery& query) const;
    // The records of one entry point, in order.
    std::vector<TransactionRecord> CallsOf(const std::string& call) const { return Select({.call = call}); }
    // The names of the calls, in order (into `lib` only, when given).
    std::vector<std::string> CallNames(const std::string& lib = "") const;
    std::vector<TransactionRecord> Refused() const { return Select({.refused = true}); }
    // The calls refused because they came after their library's detach.
    std::vector<TransactionRecord> AfterDetach() const;
    // The last record of a call selected by `query`, if any.
    std::optional<TransactionRecord> Last(const TransactionQuery& query) const;

    // Every AUX access, in order.
    std::vector<AuxAccess> Aux() const;
    // The AUX writes, in order; of one Intel output (ADL display) only when given.
    std::vector<AuxAccess> AuxWrites(std::optional<int64_t> output = std::nullopt) const;

private:
    std::vector<TransactionRecord> m_records;
};

}  // namespace LumavenSim
