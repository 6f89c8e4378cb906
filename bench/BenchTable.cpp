#include "BenchTable.h"

#include "CommandFloors.h"
#include "CommandNames.h"

#include "xelto/LogSink.h"
#include "xelto/Logging.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace LumavenBench {

namespace {

using Xelto::Spanlet::Server::Services::XeltoService;

constexpr wchar_t kOn[] = L"{\"BValue\":true}";
constexpr wchar_t kOff[] = L"{\"BValue\":false}";
constexpr uint32_t kUnsupportedCommand = 15;
// A batch lasts about this long, so that the cheap rows are not timed call by call; the
// library sessions, which take far longer, are.
constexpr double kBatchSeconds = 0.01;
constexpr unsigned kMaxBatch = 1000;

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

double Median(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

struct Row {
    std::string name;
    std::string floorText;
    std::function<void()> measured;
    std::function<void()> floor;
    // Run untimed before every timed call on both sides, so that a switch always switches.
    std::function<void()> reset;
};

// The mean time of one call over a batch: the whole batch is timed when there is nothing to
// reset, else each call on its own.
double TimeBatch(const std::function<void()>& work, const Row& row, unsigned batch)
{
    if (!row.reset) {
        const double start = Now();
        for (unsigned i = 0; i < batch; ++i) {
            work();
        }
        return (Now() - start) / batch;
    }
    double total = 0;
    for (unsigned i = 0; i < batch; ++i) {
        row.reset();
        const double start = Now();
        work();
        total += Now() - start;
    }
    return total / batch;
}

std::string Micros(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f us", seconds * 1e6);
    return text;
}

// Batches of the two sides alternate, and so does which goes first, so that slow phases of a
// shared machine hit both alike. The ratio is the median of each round's pair of batch means,
// which keeps a slow phase within one pair; the times are the medians of the batch means.
void Measure(const Row& row, unsigned rounds)
{
    // One call of each side warms up, and the first sizes the batches.
    const double oneCall = TimeBatch(row.measured, row, 1);
    TimeBatch(row.floor, row, 1);
    const unsigned batch = static_cast<unsigned>(std::clamp(kBatchSeconds / oneCall, 1.0, double{kMaxBatch}));
    std::vector<double> measured;
    std::vector<double> floor;
    std::vector<double> ratios;
    for (unsigned round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            measured.push_back(TimeBatch(row.measured, row, batch));
            floor.push_back(TimeBatch(row.floor, row, batch));
        } else {
            floor.push_back(TimeBatch(row.floor, row, batch));
            measured.push_back(TimeBatch(row.measured, row, batch));
        }
        ratios.push_back(measured.back() / floor.back());
    }
    std::printf("%-34s %12s   %-48s %12s   %6.2f\n", row.name.c_str(), Micros(Median(measured)).c_str(),
                row.floorText.c_str(), Micros(Median(floor)).c_str(), Median(ratios));
    std::fflush(stdout);
}

// The two lines every display-power event writes on entry.
void EventEntryLines()
{
    LogManager::GetLogger()->LogInfo(L"%S::PEXelto::%S",
                                     "Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task",
                                     "Enter");
    LogManager::GetLogger()->LogInfo(L"LumavenService - OledEventCalled entered");
}

}  // namespace

int RunBench(XeltoClient::LoadedService& host, unsigned rounds, const std::wstring& only)
{
    // The table is the output; log lines are still rendered, as for any host without a sink.
    Xelto::Logging::SetSink(nullptr, nullptr);
    rounds = std::max(rounds, 1u);
    XeltoService& service = host.Service();
    // The host's part of a call: a context, the call, copying the text and giving it back.
    const auto execute = [&service](uint32_t command, const wchar_t* request) {
        return [&service, command, request] { XeltoClient::RunCommand(service, command, request); };
    };
    CommandFloors floors;
    // The service initialises ADLX on the first AMD OLED command; the VariBright rows measure
    // the state after it, as the floors' own ADLX is.
    execute(10, kOn)();

    // A command's row: the command against its floor and the JSON work; `reset` (a command and
    // its request) runs untimed before every timed call.
    const auto row = [&](uint32_t command, const wchar_t* request, std::function<void()> reset) {
        const bool on = request == kOn;
        const bool toggles = command == 9 || command == 14;
        const char* name = command == kUnsupportedCommand ? "(unsupported)" : XeltoClient::CommandName(command);
        return Row{std::to_string(command) + " " + name + (toggles ? (on ? " on" : " off") : ""),
                   "json + " + floors.Text(command, on), execute(command, request),
                   [&floors, command, request, on] { Json(request, floors.Command(command, on)); }, std::move(reset)};
    };
    const XeltoClient::PowerSettingRecord displayOn = XeltoClient::MakePowerSetting(XeltoClient::PowerEvent::DisplayOn);
    const auto deliverDisplayOn = [&] { service.oled_power_event_task(nullptr, &displayOn.header); };
    // With power saving stored as off an event only reads the setting.
    const auto storeOff = [] { WriteOled(0); };
    const XeltoCreateServiceFunction factory = host.Factory();

    const std::vector<Row> rows = {
        row(1, kOn, nullptr),
        row(2, kOn, execute(3, kOn)),
        row(3, kOn, execute(2, kOn)),
        row(4, kOn, nullptr),
        row(5, kOn, execute(6, kOn)),
        row(6, kOn, execute(5, kOn)),
        row(7, kOn, nullptr),
        row(8, kOn, nullptr),
        row(9, kOn, execute(9, kOff)),
        row(9, kOff, execute(9, kOn)),
        row(10, kOn, nullptr),
        row(11, kOn, execute(12, kOn)),
        row(12, kOn, execute(11, kOn)),
        row(13, kOn, nullptr),
        row(14, kOn, execute(14, kOff)),
        row(14, kOff, execute(14, kOn)),
        row(kUnsupportedCommand, kOn, nullptr),
        // The line an unsupported command must write is work it cannot avoid either.
        Row{"15 (unsupported)", "json + error line", execute(kUnsupportedCommand, kOn),
            [] {
                Json(kOn, false);
                UnsupportedLine(kUnsupportedCommand);
            },
            nullptr},
        Row{"event display-on, OLED stored off", "reg read", deliverDisplayOn, ReadOled, storeOff},
        Row{"event display-on, OLED stored off", "reg read + its 2 log lines", deliverDisplayOn,
            [] {
                EventEntryLines();
                ReadOled();
            },
            storeOff},
        // Last: every service made here, once deleted, takes the Intel path's view of the AUX
        // table with it, which the host's service relies on.
        Row{"start-up (factory + startup_task)", "WMI query + 2 EDID walks + AUX table",
            [factory] {
                XeltoService* created = factory();
                if (created != nullptr) {
                    created->startup_task();
                    delete created;
                }
            },
            [&floors] { floors.StartUp(); }, nullptr},
    };

    const char* const vendor = floors.vendor() == Vendor::Intel ? "Intel"
                               : floors.vendor() == Vendor::Amd ? "AMD"
                                                                : "other";
    std::printf("graphics %s, panel 0x%08X; %u rounds; command floors include the JSON work (parse, write, copy)\n",
                vendor, floors.panel(), rounds);
    std::printf("%-34s %12s   %-48s %12s   %6s\n", "measured", "median", "floor", "median", "ratio");
    const std::string wanted(only.begin(), only.end());
    for (const Row& each : rows) {
        if (wanted.empty() || each.name.rfind(wanted + " ", 0) == 0) {
            Measure(each, rounds);
        }
    }
    return 0;
}

}  // namespace LumavenBench
