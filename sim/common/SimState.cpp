#include "SimState.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace LumavenSim {

namespace {

class StateLock {
public:
    StateLock() : m_mutex(CreateMutexW(nullptr, FALSE, L"LumavenSimStateLock"))
    {
        if (m_mutex != nullptr) {
            WaitForSingleObject(m_mutex, INFINITE);
        }
    }
    ~StateLock()
    {
        if (m_mutex != nullptr) {
            ReleaseMutex(m_mutex);
            CloseHandle(m_mutex);
        }
    }
    StateLock(const StateLock&) = delete;
    StateLock& operator=(const StateLock&) = delete;

private:
    HANDLE m_mutex;
};

std::string ReadWholeFile(const std::wstring& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteWholeFile(const std::wstring& path, const std::string& text)
{
    CreateDirectoryW(StateDirectory().c_str(), nullptr);
    std::ofstream out(path.c_str(), std::ios::binary | std::ios::trunc);
    out << text;
}

std::string Compact(const rapidjson::Value& value)
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return buffer.GetString();
}

rapidjson::Value& CallCounters(rapidjson::Document& state)
{
    if (!state.HasMember("calls") || !state["calls"].IsObject()) {
        state.RemoveMember("calls");
        state.AddMember("calls", rapidjson::Value(rapidjson::kObjectType), state.GetAllocator());
    }
    return state["calls"];
}

bool IsText(const rapidjson::Value& entry, const char* member, const char* text)
{
    return entry.HasMember(member) && entry[member].IsString() && std::string(entry[member].GetString()) == text;
}

// The integer `answer` of the first entry of the profile's list `list` that names `function`
// (and, when `call` is given, that call of it) and applies to the function's call number
// `calls`: every call without "nth" (or with 0), else only the nth.
std::optional<int64_t> ProfileAnswer(const rapidjson::Document& state, const char* list, const char* function,
                                     int64_t calls, const char* answer, const char* call = nullptr)
{
    if (!state.HasMember(list) || !state[list].IsArray()) {
        return std::nullopt;
    }
    for (const auto& entry : state[list].GetArray()) {
        if (!entry.IsObject() || !IsText(entry, "function", function) ||
            (call != nullptr && !IsText(entry, "call", call)) || !entry.HasMember(answer) || !entry[answer].IsInt64()) {
            continue;
        }
        const int64_t nth = entry.HasMember("nth") && entry["nth"].IsInt64() ? entry["nth"].GetInt64() : 0;
        if (nth == 0 || nth == calls) {
            return entry[answer].GetInt64();
        }
    }
    return std::nullopt;
}

}  // namespace

std::wstring StateDirectory()
{
    wchar_t windows[MAX_PATH];
    const UINT length = GetWindowsDirectoryW(windows, MAX_PATH);
    return std::wstring(windows, length) + L"\\LumavenSim";
}

std::wstring StateFile()
{
    return StateDirectory() + L"\\state.json";
}
std::wstring TransactionFile()
{
    return StateDirectory() + L"\\transactions.jsonl";
}

void WithState(const std::function<bool(rapidjson::Document& state)>& use)
{
    StateLock lock;
    rapidjson::Document state;
    state.Parse(ReadWholeFile(StateFile()).c_str());
    if (state.HasParseError() || !state.IsObject()) {
        state.SetObject();
    }
    if (use(state)) {
        WriteWholeFile(StateFile(), Compact(state));
    }
}

void ResetState(const rapidjson::Document& state)
{
    StateLock lock;
    WriteWholeFile(StateFile(), Compact(state));
    WriteWholeFile(TransactionFile(), "");
}

std::optional<int64_t> TakeFault(rapidjson::Document& state, const char* function)
{
    rapidjson::Value& counters = CallCounters(state);
    int64_t count = 1;
    if (counters.HasMember(function) && counters[function].IsInt64()) {
        count = counters[function].GetInt64() + 1;
        counters[function].SetInt64(count);
    } else {
        counters.RemoveMember(function);
        counters.AddMember(rapidjson::Value(function, state.GetAllocator()), rapidjson::Value(count),
                           state.GetAllocator());
    }
    return ProfileAnswer(state, "faults", function, count, "code");
}

std::optional<int64_t> CountAnswer(const rapidjson::Document& state, const char* function, const char* call)
{
    return ProfileAnswer(state, "counts", function, CallCount(state, function), "answer", call);
}

int64_t CallCount(const rapidjson::Document& state, const char* function)
{
    if (!state.HasMember("calls") || !state["calls"].IsObject()) {
        return 0;
    }
    const auto& counters = state["calls"];
    return counters.HasMember(function) && counters[function].IsInt64() ? counters[function].GetInt64() : 0;
}

void AppendTransaction(const rapidjson::Value& record)
{
    // Taken before the lock: the time of the call, not of its turn at the file.
    const int64_t time = TransactionClock();
    rapidjson::Document timed;
    timed.CopyFrom(record, timed.GetAllocator());
    if (timed.IsObject()) {
        timed.RemoveMember("time");
        timed.AddMember("time", time, timed.GetAllocator());
    }
    StateLock lock;
    CreateDirectoryW(StateDirectory().c_str(), nullptr);
    std::ofstream out(TransactionFile().c_str(), std::ios::binary | std::ios::app);
    out << Compact(timed) << '\n';
}

int64_t TransactionClock()
{
    LARGE_INTEGER frequency{};
    LARGE_INTEGER now{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    // Whole seconds and the remainder apart, so that the product cannot overflow.
    const int64_t seconds = now.QuadPart / frequency.QuadPart;
    const int64_t rest = now.QuadPart % frequency.QuadPart;
    return seconds * 1000000 + rest * 1000000 / frequency.QuadPart;
}

std::vector<std::string> ReadTransactions()
{
    StateLock lock;
    std::vector<std::string> records;
    std::istringstream lines(ReadWholeFile(TransactionFile()));
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            records.push_back(line);
        }
    }
    return records;
}

void ClearTransactions()
{
    StateLock lock;
    WriteWholeFile(TransactionFile(), "");
}

bool RunningUnderWine()
{
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}

std::vector<uint8_t> HexToBytes(const std::string& hex)
{
    std::vector<uint8_t> bytes;
    std::string digits;
    for (const char c : hex) {
        if (std::isxdigit(static_cast<unsigned char>(c))) {
            digits += c;
        }
    }
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::string BytesToHex(const uint8_t* bytes, size_t count)
{
    std::string hex;
    char pair[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(pair, sizeof pair, "%02X", bytes[i]);
        hex += pair;
    }
    return hex;
}

}  // namespace LumavenSim
