// One ExecuteCommand call as a host makes it, with whatever pointers the request asks for,
// and the checks every call must pass: a defined status, the argument rules, and a response
// that is one JSON object of at most 65,535 characters.
#pragma once

#include "RequestFuzzer.h"

#include "XeltoClient.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace LumavenReliability {

XeltoClient::Reply Execute(Xelto::Spanlet::Server::Services::XeltoService& service, const FuzzRequest& request);

// 0 and 0x20000001..0x20000006.
bool IsDefinedStatus(uint32_t status);
// Empty when the text is one JSON object of at most 65,535 characters whose members are
// "result" or "BValue" with a boolean or integer value; else what is wrong.
std::string CheckResponseText(const std::wstring& response);
// Empty when the call kept the contract; `wellFormed` is the oracle's verdict on the text.
std::string CheckOutcome(const FuzzRequest& request, bool wellFormed, const XeltoClient::Reply& outcome);
// Empty when the stored "OLED" value is absent, or a REG_DWORD 0 or 1.
std::string CheckOledValue();
// Whether a command may store "OLED" (the OPST and Ed switches, the ELP setter, power save).
bool MayStoreOled(uint32_t command);

// Problems found by the threads of a run: how many, and the first few for the message.
class ProblemList {
public:
    void Problem(const std::string& what);
    uint64_t Problems() const;
    std::vector<std::string> FirstProblems() const;

protected:
    mutable std::mutex m_lock;

private:
    uint64_t m_problems = 0;
    std::vector<std::string> m_first;
};

// Statuses seen and the problems found.
class OutcomeTally : public ProblemList {
public:
    void Count(uint32_t status);
    uint64_t Calls() const;
    // "ok:12,invalid-request:34,..."
    std::string Statuses() const;

private:
    std::map<uint32_t, uint64_t> m_statuses;
    uint64_t m_calls = 0;
};

// Checks the stored "OLED" value after the calls that may write it.
class OledWatch : public ProblemList {
public:
    // `after` names the call just made, for the failure message.
    void Check(const std::string& after);
};

struct CheckedCall {
    XeltoClient::Reply outcome;
    bool reachedHandler = false;  // all pointers given, well-formed, command 1..14
};
// Runs one request, checks it against the oracle and the rules above, and records the status
// and any problem (with `index` and the request) in `tally`.
CheckedCall RunChecked(Xelto::Spanlet::Server::Services::XeltoService& service, const FuzzRequest& request,
                       uint64_t index, OutcomeTally& tally);

// "shape=malformed command=9 nulls=-/-/- text=..." for failure messages.
std::string Describe(const FuzzRequest& request);

}  // namespace LumavenReliability
