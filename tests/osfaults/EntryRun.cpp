#include "EntryRun.h"

#include "LogCapture.h"
#include "XeltoClient.h"

#include <windows.h>

#include <comdef.h>

#include <cstdio>
#include <new>
#include <system_error>

namespace LumavenOsFaults {

namespace {

std::wstring Tagged(const LumavenTest::LogRecord& record)
{
    switch (record.level) {
    case Xelto::Logging::Level::Info: return L"I:" + record.text;
    case Xelto::Logging::Level::Warning: return L"W:" + record.text;
    case Xelto::Logging::Level::Error: return L"E:" + record.text;
    }
    return L"?:" + record.text;
}

}  // namespace

std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t c : text) {
        narrow += c < 0x80 ? static_cast<char>(c) : '?';
    }
    return narrow;
}

std::string Outcome::Describe() const
{
    if (!returned) {
        return "threw " + thrown;
    }
    char text[64];
    std::snprintf(text, sizeof text, "status 0x%X", call.status);
    return std::string(text) + (call.hasResponse ? " " + Narrow(call.response) : " (no text)");
}

std::unique_ptr<LumavenTest::HostedService> Prepared(Entry entry)
{
    if (entry == Entry::Factory) {
        return nullptr;
    }
    return std::make_unique<LumavenTest::HostedService>(entry != Entry::Startup);
}

Outcome RunEntry(Entry entry, uint32_t command, const wchar_t* request,
                 std::unique_ptr<LumavenTest::HostedService>& hosted)
{
    Outcome outcome;
    const LumavenTest::LogCapture capture;
    try {
        switch (entry) {
        case Entry::Factory:
            hosted = std::make_unique<LumavenTest::HostedService>(false);
            outcome.created = hosted->Created();
            break;
        case Entry::Startup: hosted->Service().startup_task(); break;
        case Entry::Command: outcome.call = hosted->Run(command, request); break;
        case Entry::Event:
            hosted->Deliver(XeltoClient::kConsoleDisplayState, 0);
            hosted->Deliver(XeltoClient::kConsoleDisplayState, 1);
            break;
        }
    } catch (const std::bad_alloc&) {
        outcome.returned = false;
        outcome.thrown = "std::bad_alloc";
    } catch (const std::system_error& error) {
        outcome.returned = false;
        // Compared by name: the DLL carries its own copy of the runtime and so its own
        // category objects.
        const bool noMemory = std::string(error.code().category().name()) == "generic" &&
                              error.code().value() == static_cast<int>(std::errc::not_enough_memory);
        outcome.thrown = noMemory ? "std::system_error(ENOMEM)"
                                  : "std::system_error(" + std::string(error.code().category().name()) + " " +
                                        std::to_string(error.code().value()) + ")";
    } catch (const _com_error& error) {
        outcome.returned = false;
        outcome.thrown = error.Error() == E_OUTOFMEMORY ? "_com_error(E_OUTOFMEMORY)" : "_com_error(other)";
    } catch (const std::exception& error) {
        outcome.returned = false;
        outcome.thrown = error.what();
    }
    for (const LumavenTest::LogRecord& record : capture.Records()) {
        outcome.logs.push_back(Tagged(record));
    }
    return outcome;
}

LoadedDll::LoadedDll()
{
    m_module = LoadLibraryW(L"LumavenService.dll");
    if (m_module == nullptr) {
        return;
    }
    m_patch = std::make_unique<PatchedImports>(m_module);
    SkipWaits();
    FailNthAllocation(1);
    {
        const LumavenTest::HostedService failed(false);
    }
    FailNthAllocation(0);
    const LumavenTest::HostedService created(false);
}

void LoadedDll::Unload()
{
    if (m_module != nullptr) {
        m_patch->LeaveForUnload();
        FreeLibrary(m_module);
        m_module = nullptr;
    }
    DisarmAll();
}

}  // namespace LumavenOsFaults
