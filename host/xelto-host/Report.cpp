#include "Report.h"

#include "CommandNames.h"
#include "FileVersion.h"
#include "LibraryProbe.h"
#include "LogListener.h"

#include "xelto/LogSink.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <optional>
#include <string>
#include <vector>

namespace XeltoHost {

namespace {

using XeltoClient::CommandName;
using XeltoClient::StatusName;

// The commands that only read: the OLED panel check, the stored state, the OPST probe, the
// OLED support query and the VariBright query. None writes the registry or the panel.
constexpr uint32_t kReadOnlyCommands[] = {4, 7, 8, 10, 13};

struct LogLine {
    Xelto::Logging::Level level;
    std::wstring text;
};

std::string Utf8(const std::wstring& text)
{
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), utf8.data(), length, nullptr, nullptr);
    return utf8;
}

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void WriteText(Writer& out, const std::wstring& text)
{
    const std::string utf8 = Utf8(text);
    out.String(utf8.c_str(), static_cast<rapidjson::SizeType>(utf8.size()));
}

void WriteOptionalText(Writer& out, const std::optional<std::wstring>& text)
{
    if (text) {
        WriteText(out, *text);
    } else {
        out.Null();
    }
}

// The number the service logs after `marker`, in the given base; nothing when no line has it.
std::optional<unsigned long> LoggedNumber(const std::vector<LogLine>& log, const wchar_t* marker, int base)
{
    for (const LogLine& line : log) {
        const size_t at = line.text.find(marker);
        if (at == std::wstring::npos) {
            continue;
        }
        const wchar_t* digits = line.text.c_str() + at + std::wcslen(marker);
        wchar_t* end = nullptr;
        const unsigned long value = std::wcstoul(digits, &end, base);
        if (end != digits) {
            return value;
        }
    }
    return std::nullopt;
}

void WriteVendor(Writer& out, const std::vector<LogLine>& log)
{
    // Start-up logs "...CheckVideoControllerType - The current video controller is N".
    const auto vendor = LoggedNumber(log, L"The current video controller is ", 10);
    if (!vendor) {
        out.Null();
        return;
    }
    out.StartObject();
    out.Key("id");
    out.Uint(static_cast<unsigned>(*vendor));
    out.Key("name");
    out.String(*vendor == 1 ? "Intel" : *vendor == 2 ? "AMD" : "unsupported");
    out.EndObject();
}

void WritePanel(Writer& out, const std::vector<LogLine>& log)
{
    // The panel identity (EDID bytes 8..11, little-endian) appears in the service's "Pid Vid"
    // lines, which the read-only commands normally do not write.
    const auto panel = LoggedNumber(log, L"Pid Vid: ", 16);
    if (!panel) {
        out.Null();
        return;
    }
    char text[16];
    std::snprintf(text, sizeof text, "0x%08lX", *panel);
    out.String(text);
}

void WriteQuery(Writer& out, uint32_t command, const XeltoClient::Reply& outcome)
{
    out.StartObject();
    out.Key("command");
    out.Uint(command);
    out.Key("handler");
    out.String(CommandName(command));
    out.Key("status");
    out.Uint(outcome.status);
    out.Key("statusName");
    out.String(StatusName(outcome.status));
    out.Key("response");
    rapidjson::Document response;
    if (!outcome.hasResponse) {
        out.Null();
    } else if (response.Parse(Utf8(outcome.response).c_str()).HasParseError()) {
        WriteText(out, outcome.response);
    } else {
        response.Accept(out);
    }
    out.EndObject();
}

void WriteLibraries(Writer& out)
{
    out.StartArray();
    for (const LibraryProbe& probe : ProbeVendorLibraries()) {
        out.StartObject();
        out.Key("name");
        WriteText(out, probe.name);
        out.Key("search");
        out.String(probe.search);
        out.Key("neededFor");
        out.String(probe.neededFor);
        out.Key("loaded");
        out.Bool(probe.loaded);
        out.Key("path");
        if (probe.loaded) {
            WriteText(out, probe.path);
        } else {
            out.Null();
        }
        out.Key("error");
        out.Uint(probe.error);
        out.EndObject();
    }
    out.EndArray();
}

void WriteLog(Writer& out, const std::vector<LogLine>& log)
{
    out.StartArray();
    for (const LogLine& line : log) {
        out.StartObject();
        out.Key("level");
        out.String(Xelto::Logging::LevelName(line.level));
        out.Key("text");
        WriteText(out, line.text);
        out.EndObject();
    }
    out.EndArray();
}

}  // namespace

int RunReport(const std::wstring& dllPath, bool startup)
{
    std::vector<LogLine> log;
    // Everything the service logs from its loading to its unloading.
    std::optional<XeltoClient::LogListener> collector;
    collector.emplace([&log](const XeltoClient::LogLine& line) { log.push_back({line.level, line.text}); });

    XeltoClient::LoadedService host;
    std::string reason;
    const bool created = host.Create(dllPath, reason, XeltoClient::LoadedService::AtEnd::KeepLoaded);
    std::vector<std::pair<uint32_t, XeltoClient::Reply>> queries;
    if (created) {
        if (startup) {
            host.Startup();
        }
        for (const uint32_t command : kReadOnlyCommands) {
            queries.emplace_back(command, host.Run(command, L"{}"));
        }
    }
    // Probed while the service still lives, so that a library the service keeps loaded is
    // reported where the service got it.
    rapidjson::StringBuffer buffer;
    Writer out(buffer);
    out.StartObject();
    out.Key("host");
    out.StartObject();
    out.Key("version");
    out.String(LUMAVEN_VERSION);
    out.Key("path");
    WriteText(out, LoadedModulePath(nullptr));
    out.EndObject();

    out.Key("service");
    out.StartObject();
    out.Key("path");
    WriteText(out, dllPath);
    out.Key("version");
    WriteOptionalText(out, FileProductVersion(dllPath));
    out.Key("created");
    out.Bool(created);
    out.Key("reason");
    if (created) {
        out.Null();
    } else {
        out.String(reason.c_str());
    }
    out.Key("startupTask");
    out.Bool(created && startup);
    out.EndObject();

    out.Key("graphicsVendor");
    WriteVendor(out, log);
    out.Key("panelId");
    WritePanel(out, log);

    out.Key("queries");
    out.StartArray();
    for (const auto& [command, outcome] : queries) {
        WriteQuery(out, command, outcome);
    }
    out.EndArray();

    out.Key("libraries");
    WriteLibraries(out);
    host.Destroy();
    collector.reset();

    out.Key("log");
    WriteLog(out, log);
    out.EndObject();

    std::fwrite(buffer.GetString(), 1, buffer.GetSize(), stdout);
    std::fputs("\n", stdout);
    std::fflush(stdout);
    return 0;
}

}  // namespace XeltoHost
