#include "CommandOutcome.h"

#include "RunSettings.h"

#include "LumavenRapidJson.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace LumavenReliability {

namespace {

constexpr uint32_t kSuccess = 0;
constexpr uint32_t kUnsupportedCommand = 0x20000001;
constexpr uint32_t kInvalidArgument = 0x20000002;
constexpr uint32_t kInvalidRequest = 0x20000003;
constexpr uint32_t kLastDefinedStatus = 0x20000006;
constexpr size_t kMaxResponseChars = 65535;

const char* StatusName(uint32_t status)
{
    switch (status) {
    case 0: return "ok";
    case 0x20000001: return "unsupported";
    case 0x20000002: return "invalid-argument";
    case 0x20000003: return "invalid-request";
    case 0x20000004: return "registry-error";
    case 0x20000005: return "device-error";
    case 0x20000006: return "exception";
    default: return nullptr;
    }
}

bool KnownCommand(uint32_t command)
{
    return command >= 1 && command <= 14;
}

}  // namespace

XeltoClient::Reply Execute(Xelto::Spanlet::Server::Services::XeltoService& service, const FuzzRequest& request)
{
    return XeltoClient::Execute(service,
                                XeltoClient::Call{.command = request.command,
                                                  .request = request.nullMessage ? nullptr : request.text.c_str(),
                                                  .contextWord = request.contextWord,
                                                  .withContext = !request.nullContext,
                                                  .withOutString = !request.nullOutString,
                                                  .withCallback = request.withCallback,
                                                  .extra = request.extra});
}

bool IsDefinedStatus(uint32_t status)
{
    return status == kSuccess || (status >= kUnsupportedCommand && status <= kLastDefinedStatus);
}

std::string CheckResponseText(const std::wstring& response)
{
    if (response.size() > kMaxResponseChars) {
        return Format("response of %zu characters", response.size());
    }
    rapidjson::GenericDocument<rapidjson::UTF16<wchar_t>> document;
    document.Parse(response.c_str());
    if (document.HasParseError()) {
        return "response is not JSON: " + Preview(response);
    }
    if (!document.IsObject()) {
        return "response is not an object: " + Preview(response);
    }
    for (const auto& member : document.GetObject()) {
        const std::wstring name(member.name.GetString(), member.name.GetStringLength());
        if (name != L"result" && name != L"BValue") {
            return "unexpected member in " + Preview(response);
        }
        if (!member.value.IsBool() && !member.value.IsInt()) {
            return "member of an unexpected type in " + Preview(response);
        }
    }
    return {};
}

std::string CheckOutcome(const FuzzRequest& request, bool wellFormed, const XeltoClient::Reply& outcome)
{
    if (!IsDefinedStatus(outcome.status)) {
        return Format("undefined status 0x%08X", outcome.status);
    }
    if (outcome.callbackCalls != 0) {
        return "the callback was called";
    }
    if (request.nullContext || request.nullMessage || request.nullOutString) {
        if (outcome.status != kInvalidArgument) {
            return Format("null argument answered 0x%08X", outcome.status);
        }
        if (outcome.outStringWritten) {
            return "null argument, but *outString was changed";
        }
        return {};
    }
    if (!wellFormed) {
        if (outcome.status != kInvalidRequest) {
            return Format("malformed request answered 0x%08X", outcome.status);
        }
        if (!outcome.outStringWritten || outcome.hasResponse) {
            return "malformed request, but *outString is not null";
        }
        return {};
    }
    if (!outcome.hasResponse) {
        return Format("well-formed request answered 0x%08X without a response", outcome.status);
    }
    if (std::string problem = CheckResponseText(outcome.response); !problem.empty()) {
        return problem;
    }
    if (!KnownCommand(request.command)) {
        if (outcome.status != kUnsupportedCommand || outcome.response != L"{}") {
            return Format("command %u answered 0x%08X ", request.command, outcome.status) + Preview(outcome.response);
        }
        return {};
    }
    if (outcome.status == kUnsupportedCommand || outcome.status == kInvalidRequest) {
        return Format("command %u with a well-formed request answered 0x%08X", request.command, outcome.status);
    }
    return {};
}

std::string CheckOledValue()
{
    BYTE data[16] = {};
    DWORD size = sizeof data;
    DWORD type = 0;
    const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Xelto\\Xelto Lumaven", L"OLED",
                                        RRF_RT_ANY | RRF_NOEXPAND, &type, data, &size);
    if (status == ERROR_FILE_NOT_FOUND) {
        return {};
    }
    if (status != ERROR_SUCCESS) {
        return Format("reading \"OLED\" failed with %ld", static_cast<long>(status));
    }
    DWORD value = 0;
    std::memcpy(&value, data, sizeof value);
    if (type != REG_DWORD || size != sizeof(DWORD) || value > 1) {
        return Format("\"OLED\" holds type %lu, %lu bytes, value %lu", static_cast<unsigned long>(type),
                      static_cast<unsigned long>(size), static_cast<unsigned long>(value));
    }
    return {};
}

bool MayStoreOled(uint32_t command)
{
    constexpr uint32_t kStoring[] = {1, 2, 3, 5, 6, 9, 11, 12};
    return std::find(std::begin(kStoring), std::end(kStoring), command) != std::end(kStoring);
}

void ProblemList::Problem(const std::string& what)
{
    const std::lock_guard guard(m_lock);
    ++m_problems;
    if (m_first.size() < 10) {
        m_first.push_back(what);
    }
}

uint64_t ProblemList::Problems() const
{
    const std::lock_guard guard(m_lock);
    return m_problems;
}

std::vector<std::string> ProblemList::FirstProblems() const
{
    const std::lock_guard guard(m_lock);
    return m_first;
}

void OutcomeTally::Count(uint32_t status)
{
    const std::lock_guard guard(m_lock);
    ++m_calls;
    ++m_statuses[status];
}

uint64_t OutcomeTally::Calls() const
{
    const std::lock_guard guard(m_lock);
    return m_calls;
}

std::string OutcomeTally::Statuses() const
{
    const std::lock_guard guard(m_lock);
    std::string text;
    for (const auto& [status, count] : m_statuses) {
        const char* name = StatusName(status);
        text += (text.empty() ? "" : ",") + (name != nullptr ? std::string(name) : Format("0x%08X", status)) +
                Format(":%llu", static_cast<unsigned long long>(count));
    }
    return text;
}

void OledWatch::Check(const std::string& after)
{
    if (const std::string problem = CheckOledValue(); !problem.empty()) {
        Problem(problem + " after " + after);
    }
}

CheckedCall RunChecked(Xelto::Spanlet::Server::Services::XeltoService& service, const FuzzRequest& request,
                       uint64_t index, OutcomeTally& tally)
{
    const bool wellFormed = request.nullMessage || IsWellFormedJson(request.text);
    CheckedCall call;
    call.outcome = Execute(service, request);
    call.reachedHandler = !request.nullContext && !request.nullMessage && !request.nullOutString && wellFormed &&
                          KnownCommand(request.command);
    tally.Count(call.outcome.status);
    if (const std::string problem = CheckOutcome(request, wellFormed, call.outcome); !problem.empty()) {
        tally.Problem(Format("request #%llu: ", static_cast<unsigned long long>(index)) + problem + " | " +
                      Describe(request));
    }
    return call;
}

std::string Describe(const FuzzRequest& request)
{
    return Format("shape=%s command=%u nulls(context/message/outString)=%d/%d/%d text=", ShapeName(request.shape),
                  request.command, request.nullContext, request.nullMessage, request.nullOutString) +
           Preview(request.text);
}

}  // namespace LumavenReliability
