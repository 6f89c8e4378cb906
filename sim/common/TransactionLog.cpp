#include "TransactionLog.h"

#include "DetachGuard.h"
#include "SimState.h"

namespace LumavenSim {

namespace {

const rapidjson::Value* Member(const rapidjson::Value& record, const char* name)
{
    if (!record.IsObject()) {
        return nullptr;
    }
    const auto found = record.FindMember(name);
    return found != record.MemberEnd() ? &found->value : nullptr;
}

}  // namespace

TransactionRecord::TransactionRecord(std::string text) : m_text(std::move(text))
{
    auto json = std::make_shared<rapidjson::Document>();
    json->Parse(m_text.c_str());
    if (json->HasParseError()) {
        json->SetObject();  // a torn line reads as a record of nothing
    }
    m_json = std::move(json);
}

std::string TransactionRecord::TextWithout(std::initializer_list<const char*> members) const
{
    rapidjson::Document copy;
    copy.CopyFrom(*m_json, copy.GetAllocator());
    for (const char* member : members) {
        if (copy.HasMember(member)) {
            copy.EraseMember(member);
        }
    }
    rapidjson::StringBuffer text;
    rapidjson::Writer<rapidjson::StringBuffer> writer(text);
    copy.Accept(writer);
    return text.GetString();
}

bool TransactionRecord::AfterDetach() const
{
    return Refusal().rfind(kAfterDetach, 0) == 0;
}

bool TransactionRecord::Has(const char* name) const
{
    return Member(*m_json, name) != nullptr;
}

const rapidjson::Value& TransactionRecord::operator[](const char* name) const
{
    static const rapidjson::Value kMissing;
    const rapidjson::Value* value = Member(*m_json, name);
    return value != nullptr ? *value : kMissing;
}

int64_t TransactionRecord::Number(const char* name, int64_t absent) const
{
    const rapidjson::Value* value = Member(*m_json, name);
    return value != nullptr && value->IsInt64() ? value->GetInt64() : absent;
}

std::string TransactionRecord::String(const char* name, const std::string& absent) const
{
    const rapidjson::Value* value = Member(*m_json, name);
    return value != nullptr && value->IsString() ? value->GetString() : absent;
}

bool TransactionRecord::Flag(const char* name) const
{
    const rapidjson::Value* value = Member(*m_json, name);
    return value != nullptr && value->IsBool() && value->GetBool();
}

std::optional<AuxAccess> TransactionRecord::Aux() const
{
    const std::string call = Call();
    AuxAccess access;
    if (call == "ctlAUXAccess") {
        access.driver = AuxAccess::Driver::Intel;
        access.write = String("op") == "write";
        access.output = Number("output");
        access.size = static_cast<size_t>(Number("size", 0));
        if (access.write) {
            access.bytes = String("data");
        }
    } else if (call == "ADL2_Display_NativeAUXChannel_Access") {
        // ADL's command 1 writes.
        access.driver = AuxAccess::Driver::Amd;
        access.write = Number("command") == 1;
        access.output = Number("display");
        access.size = static_cast<size_t>(Number("dataSize", 0));
        if (access.write) {
            access.bytes = String("bytes");
        }
    } else {
        return std::nullopt;
    }
    access.adapter = Number("adapter");
    access.address = static_cast<uint32_t>(Number("address", 0xFFFFFFFF));
    access.time = Number("time");
    return access;
}

TransactionLog TransactionLog::Read()
{
    return TransactionLog(ReadTransactions());
}

TransactionLog::TransactionLog(const std::vector<std::string>& lines)
{
    m_records.reserve(lines.size());
    for (const std::string& line : lines) {
        m_records.emplace_back(line);
    }
}

std::vector<TransactionRecord> TransactionLog::Select(const TransactionQuery& query) const
{
    std::vector<TransactionRecord> selected;
    for (const TransactionRecord& record : m_records) {
        if ((query.lib.empty() || record.Library() == query.lib) &&
            (query.call.empty() || record.Call() == query.call) &&
            (!query.refused || record.Refused() == *query.refused)) {
            selected.push_back(record);
        }
    }
    return selected;
}

std::vector<std::string> TransactionLog::CallNames(const std::string& lib) const
{
    std::vector<std::string> names;
    for (const TransactionRecord& record : Select({.lib = lib})) {
        names.push_back(record.Call());
    }
    return names;
}

std::vector<TransactionRecord> TransactionLog::AfterDetach() const
{
    std::vector<TransactionRecord> late;
    for (const TransactionRecord& record : m_records) {
        if (record.AfterDetach()) {
            late.push_back(record);
        }
    }
    return late;
}

std::optional<TransactionRecord> TransactionLog::Last(const TransactionQuery& query) const
{
    std::vector<TransactionRecord> selected = Select(query);
    if (selected.empty()) {
        return std::nullopt;
    }
    return selected.back();
}

std::vector<AuxAccess> TransactionLog::Aux() const
{
    std::vector<AuxAccess> accesses;
    for (const TransactionRecord& record : m_records) {
        if (auto access = record.Aux()) {
            accesses.push_back(std::move(*access));
        }
    }
    return accesses;
}

std::vector<AuxAccess> TransactionLog::AuxWrites(std::optional<int64_t> output) const
{
    std::vector<AuxAccess> writes;
    for (AuxAccess& access : Aux()) {
        if (access.write && (!output || access.output == *output)) {
            writes.push_back(std::move(access));
        }
    }
    return writes;
}

}  // namespace LumavenSim
