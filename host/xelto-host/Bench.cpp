#include "Bench.h"

#include "xelto/Logging.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace XeltoHost {

namespace {

using Utf16 = rapidjson::UTF16<wchar_t>;
using Document = rapidjson::GenericDocument<Utf16>;
using Buffer = rapidjson::GenericStringBuffer<Utf16>;

constexpr wchar_t kRequest[] = L"{\"BValue\":true}";
constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Xelto\\Xelto Lumaven";

double Now()
{
    static const double frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return static_cast<double>(f.QuadPart);
    }();
    LARGE_INTEGER t;
    QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) / frequency;
}

// The JSON work every command does whatever it answers: parse the request, make an empty
// response, write it compactly, hand out a malloc'ed copy (and free it, as the host does).
void BareJson()
{
    Document request;
    request.Parse<rapidjson::kParseIterativeFlag>(kRequest);
    Document response;
    response.SetObject();
    Buffer text;
    rapidjson::Writer<Buffer, Utf16, Utf16> writer(text);
    response.Accept(writer);
    const size_t bytes = text.GetSize() + sizeof(wchar_t);
    void* copy = std::malloc(bytes);
    std::memcpy(copy, text.GetString(), bytes);
    std::free(copy);
}

// The error line an unsupported command must write.
void UnsupportedLine()
{
    LogManager::GetLogger()->LogError(LoggingData{L"%S.%S - Unsupported Function call %d", 1, 0},
                                      "class Xelto::Spanlet::Server::Services::Lumaven::LumavenService",
                                      "ExecuteCommand", 15);
}

// The registry calls reading the settings value cannot avoid.
void BareRegistryRead()
{
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, KEY_ALL_ACCESS, &key);
    DWORD type = REG_DWORD;
    DWORD data = 0;
    DWORD size = sizeof data;
    RegQueryValueExW(key, L"OLED", nullptr, &type, reinterpret_cast<BYTE*>(&data), &size);
    RegCloseKey(key);
}

double Median(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

struct Pair {
    const char* name;
    const char* floorName;
    std::function<void()> measured;
    std::function<void()> floor;
    unsigned batch;
};

// Batches of the two alternate, so slow phases of a shared machine hit both alike; the
// medians of the batch means are compared.
void Measure(const Pair& pair, unsigned rounds)
{
    std::vector<double> measured;
    std::vector<double> floor;
    for (unsigned i = 0; i < pair.batch; ++i) {  // warm up
        pair.measured();
        pair.floor();
    }
    const auto timeBatch = [&pair](const std::function<void()>& work) {
        const double start = Now();
        for (unsigned i = 0; i < pair.batch; ++i) {
            work();
        }
        return (Now() - start) / pair.batch;
    };
    for (unsigned round = 0; round < rounds; ++round) {
        // Which of the two goes first alternates too.
        if (round % 2 == 0) {
            measured.push_back(timeBatch(pair.measured));
            floor.push_back(timeBatch(pair.floor));
        } else {
            floor.push_back(timeBatch(pair.floor));
            measured.push_back(timeBatch(pair.measured));
        }
    }
    const double m = Median(measured);
    const double f = Median(floor);
    std::printf("%-34s %10.2f us   %-34s %10.2f us   ratio %5.2f\n", pair.name, m * 1e6, pair.floorName, f * 1e6,
                m / f);
    std::fflush(stdout);
}

}  // namespace

int RunBench(ServiceHost& host, unsigned rounds)
{
    Xelto::Spanlet::Server::Services::XeltoService& service = *host.Service();
    // The host's part of a call: a context, the call, and giving the text back.
    const auto Execute = [&service](uint32_t command) {
        Xelto::Spanlet::Server::Services::CallContext context{1};
        wchar_t* response = nullptr;
        service.ExecuteCommand(&context, command, kRequest, &response, nullptr, 0);
        service.FreeBuffer(response);
    };
    std::printf("%-34s %13s   %-34s %13s   %s\n", "measured", "median", "floor", "median", "ratio");
    const std::vector<Pair> pairs = {
        {"ExecuteCommand 15 (unsupported)", "parse + write + copy",
         [&] { Execute(15); }, BareJson, 200},
        {"ExecuteCommand 15 (unsupported)", "parse + write + copy + error line",
         [&] { Execute(15); }, [] { BareJson(); UnsupportedLine(); }, 200},
        {"ExecuteCommand 7 (OLED query)", "RegOpenKeyEx + RegQueryValueEx + close",
         [&] { Execute(7); }, BareRegistryRead, 50},
    };
    for (const Pair& pair : pairs) {
        Measure(pair, rounds);
    }
    return 0;
}

}  // namespace XeltoHost
