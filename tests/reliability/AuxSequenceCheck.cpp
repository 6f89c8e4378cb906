#include "AuxSequenceCheck.h"

#include "RunSettings.h"
#include "SimState.h"

namespace LumavenReliability {

namespace {

struct AuxOp {
    enum Kind { Write, Read, SessionOpen, SessionClose } kind;
    AuxWrite access;  // for a read, `bytes` is empty and `size` counts
    size_t size = 0;
    size_t record = 0;
};

std::vector<AuxOp> Extract(const LumavenSim::TransactionLog& log, AuxChannel channel)
{
    const bool intel = channel == AuxChannel::IntelControlLib;
    const char* open = intel ? "ctlInit" : "ADL2_Main_Control_Create";
    const char* close = intel ? "ctlClose" : "ADL2_Main_Control_Destroy";
    const LumavenSim::AuxAccess::Driver driver =
        intel ? LumavenSim::AuxAccess::Driver::Intel : LumavenSim::AuxAccess::Driver::Amd;
    std::vector<AuxOp> ops;
    for (size_t index = 0; index < log.Size(); ++index) {
        const LumavenSim::TransactionRecord& record = log.Records()[index];
        const std::string call = record.Call();
        if (call == open) {
            ops.push_back({AuxOp::SessionOpen, {}, 0, index});
        } else if (call == close) {
            ops.push_back({AuxOp::SessionClose, {}, 0, index});
        } else if (const auto access = record.Aux(); access && access->driver == driver) {
            ops.push_back({access->write ? AuxOp::Write : AuxOp::Read,
                           {access->address, access->bytes},
                           access->write ? 0 : access->size,
                           index});
        }
    }
    return ops;
}

std::string Listing(const std::vector<AuxOp>& ops, size_t from, size_t count)
{
    std::string text;
    for (size_t i = from; i < ops.size() && i < from + count; ++i) {
        text += Format(" %s%04X", ops[i].kind == AuxOp::Write ? "W" : "R", ops[i].access.address);
        text += ops[i].kind == AuxOp::Write ? "=" + ops[i].access.bytes : Format("/%zu", ops[i].size);
    }
    return text;
}

bool Matches(const std::vector<AuxOp>& ops, size_t at, const std::vector<AuxWrite>& sequence)
{
    if (sequence.empty() || at + sequence.size() > ops.size()) {
        return false;
    }
    for (size_t k = 0; k < sequence.size(); ++k) {
        if (ops[at + k].kind != AuxOp::Write || !(ops[at + k].access == sequence[k])) {
            return false;
        }
    }
    return true;
}

void CheckSessions(const std::vector<AuxOp>& ops, AuxTally& tally)
{
    bool open = false;
    for (const AuxOp& op : ops) {
        if (op.kind == AuxOp::SessionOpen) {
            if (open) {
                tally.Violation(Format("record %zu opens a session inside another", op.record));
            }
            open = true;
            ++tally.sessions;
        } else if (op.kind == AuxOp::SessionClose) {
            if (!open) {
                tally.Violation(Format("record %zu closes a session that is not open", op.record));
            }
            open = false;
        }
    }
    if (open) {
        tally.Violation("a session is still open at the end of the log");
    }
}

void CheckSequences(const std::vector<AuxOp>& all, const PanelSequences& panel, AuxChannel channel, AuxTally& tally)
{
    std::vector<AuxOp> ops;
    for (const AuxOp& op : all) {
        if (op.kind == AuxOp::Write || op.kind == AuxOp::Read) {
            ops.push_back(op);
        }
    }
    size_t i = 0;
    while (i < ops.size()) {
        if (ops[i].kind == AuxOp::Read) {
            tally.Violation(Format("record %zu reads without a sequence written just before:", ops[i].record) +
                            Listing(ops, i, 6));
            ++i;
            continue;
        }
        const std::vector<AuxWrite>* matched = nullptr;
        if (Matches(ops, i, panel.on)) {
            matched = &panel.on;
            ++tally.onSequences;
        } else if (Matches(ops, i, panel.off)) {
            matched = &panel.off;
            ++tally.offSequences;
        }
        if (matched == nullptr) {
            tally.Violation(Format("writes from record %zu are not one whole sequence of the panel:", ops[i].record) +
                            Listing(ops, i, 6));
            ++i;
            continue;
        }
        i += matched->size();
        if (channel == AuxChannel::IntelControlLib) {
            // The Intel writer reads back the first write of the sequence, and nothing else
            // reaches the panel in between.
            const AuxWrite& first = matched->front();
            if (i < ops.size() && ops[i].kind == AuxOp::Read && ops[i].access.address == first.address &&
                ops[i].size == first.bytes.size() / 2) {
                ++i;
            } else {
                tally.Violation(Format("the sequence ending before record %zu is not read back right after it:",
                                       i < ops.size() ? ops[i].record : 0) +
                                Listing(ops, i, 6));
            }
        }
    }
}

}  // namespace

PanelSequences SequencesOf(uint32_t panelId)
{
    switch (panelId) {
    case LumavenSim::Panels::kSdc4174.id: return {{{0x4027, "C0"}}, {{0x4027, "00"}}};
    case LumavenSim::Panels::kSdc416C.id:
        return {{{0x045C, "06"}, {0x0454, "18"}, {0x0453, "41"}, {0x045A, "C0"}, {0x045B, "40"}},
                {{0x045C, "06"}, {0x0454, "18"}, {0x0453, "41"}, {0x045A, "00"}, {0x045B, "40"}}};
    case LumavenSim::Panels::kSdc4160.id:
        return {{{0x404B, "7C84CC"}, {0x4056, "1756FE"}, {0x404E, "0C0003"}, {0x4054, "02"}},
                {{0x404B, "7C84CC"}, {0x4056, "1756F0"}, {0x404E, "0C0003"}, {0x4054, "02"}}};
    default: return {};
    }
}

void AuxTally::Violation(const std::string& what)
{
    ++violations;
    if (firstViolations.size() < 10) {
        firstViolations.push_back(what);
    }
}

std::string AuxTally::Figures() const
{
    return Format("aux-on=%llu aux-off=%llu sessions=%llu aux-violations=%llu",
                  static_cast<unsigned long long>(onSequences), static_cast<unsigned long long>(offSequences),
                  static_cast<unsigned long long>(sessions), static_cast<unsigned long long>(violations));
}

void CheckAuxLog(const LumavenSim::TransactionLog& log, uint32_t panelId, AuxChannel channel, AuxTally& tally)
{
    const std::vector<AuxOp> ops = Extract(log, channel);
    CheckSessions(ops, tally);
    CheckSequences(ops, SequencesOf(panelId), channel, tally);
}

void CheckAndClearAuxLog(const Laptop& laptop, AuxTally& tally)
{
    const LumavenSim::TransactionLog log = LumavenSim::TransactionLog::Read();
    LumavenSim::ClearTransactions();
    CheckAuxLog(log, laptop.panelId, laptop.channel, tally);
}

}  // namespace LumavenReliability
