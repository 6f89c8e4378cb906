#include "Transaction.h"

#include "SimState.h"

#include <windows.h>

namespace LumavenSim {

Transaction::Transaction(const std::string& library, const char* call) : m_call(call)
{
    m_doc.SetObject();
    Text("lib", library);
    Text("call", call);
}

Transaction& Transaction::Add(const char* name, rapidjson::Value value)
{
    m_doc.RemoveMember(name);
    m_doc.AddMember(rapidjson::StringRef(name), value, m_doc.GetAllocator());
    return *this;
}

Transaction& Transaction::Text(const char* name, const std::string& value)
{
    return Add(name, rapidjson::Value(value.c_str(), m_doc.GetAllocator()));
}

Transaction& Transaction::Argument(rapidjson::Value value)
{
    m_args.PushBack(value, m_doc.GetAllocator());
    return WithArguments();
}

Transaction& Transaction::WithArguments()
{
    m_withArguments = true;
    return *this;
}

void Transaction::Finish(rapidjson::Value result)
{
    if (m_withArguments) {
        m_doc.AddMember("args", m_args, m_doc.GetAllocator());
        m_withArguments = false;
    }
    if (!result.IsNull()) {
        m_doc.AddMember("result", result, m_doc.GetAllocator());
    }
    AppendTransaction(m_doc);
}

rapidjson::Value& Section(rapidjson::Document& state, const char* name)
{
    if (!state.HasMember(name) || !state[name].IsObject()) {
        state.RemoveMember(name);
        state.AddMember(rapidjson::Value(name, state.GetAllocator()), rapidjson::Value(rapidjson::kObjectType),
                        state.GetAllocator());
    }
    return state[name];
}

std::vector<rapidjson::Value*> ObjectsIn(rapidjson::Value& parent, const char* arrayName)
{
    std::vector<rapidjson::Value*> objects;
    if (parent.IsObject() && parent.HasMember(arrayName) && parent[arrayName].IsArray()) {
        for (auto& element : parent[arrayName].GetArray()) {
            if (element.IsObject()) {
                objects.push_back(&element);
            }
        }
    }
    return objects;
}

void CountLoadsAndUnloads(const char* section, unsigned long reason, void* reserved)
{
    const char* counter = reason == DLL_PROCESS_ATTACH                          ? "loads"
                          : reason == DLL_PROCESS_DETACH && reserved == nullptr ? "unloads"
                                                                                : nullptr;
    if (counter == nullptr) {
        return;
    }
    WithState([section, counter](rapidjson::Document& state) {
        rapidjson::Value& object = Section(state, section);
        const int64_t count =
            object.HasMember(counter) && object[counter].IsInt64() ? object[counter].GetInt64() + 1 : 1;
        object.RemoveMember(counter);
        object.AddMember(rapidjson::Value(counter, state.GetAllocator()), rapidjson::Value(count),
                         state.GetAllocator());
        return true;
    });
}

}  // namespace LumavenSim
