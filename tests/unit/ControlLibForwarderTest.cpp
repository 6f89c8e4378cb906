// The 90 forwarders of the client layer, each one called through the service's own function
// of that name: before any library is loaded, on the simulated driver, and on a variant of it
// that lacks every forwarded symbol.
#include "ControlLibFixture.h"
#include "ControlLibProof.h"
#include "ServiceAnswers.h"

#include <gtest/gtest.h>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::ControlLibTest;
namespace Proof = LumavenTest::ControlLibProof;

namespace {

class ControlLibForwarders : public ControlLibTest {
protected:
    // Installs `library` as ControlLib.dll and loads it; answers the API handle.
    static ctl_api_handle_t Load(const std::string& library)
    {
        InstallIntel(library);
        ctl_api_handle_t api = nullptr;
        EXPECT_EQ(Init(&api), CTL_RESULT_SUCCESS);
        EXPECT_NE(controlLibModule, nullptr);
        return api;
    }

    // Calls every forwarder with its distinct arguments and expects `expected` from each.
    static int ExpectEveryForwarderAnswers(uint32_t expected)
    {
        int index = 0;
#define LUMAVEN_EXPECT_ANSWER(name, ...)                               \
    EXPECT_EQ(Proof::CallDistinct(&::name, index), expected) << #name; \
    ++index;
        LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_EXPECT_ANSWER)
#undef LUMAVEN_EXPECT_ANSWER
        return index;
    }
};

}  // namespace

TEST_F(ControlLibForwarders, EveryForwarderBeforeInitAnswersNotInitialized)
{
    InstallIntel("ControlLib.dll");
    EXPECT_EQ(ExpectEveryForwarderAnswers(LumavenTest::IntelResults::kNotInitialized), 90);
    EXPECT_EQ(controlLibModule, nullptr);
    EXPECT_EQ(LumavenSim::Intel::Counter("loads"), 0);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(ControlLibForwarders, EveryForwarderPassesItsArgumentsAndTheDriversResultUnchanged)
{
    LumavenTest::InstallProfile(Proof::Profile("ControlLib.dll"));
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(Init(&api), CTL_RESULT_SUCCESS);

    int index = 0;
#define LUMAVEN_PROVE(name, ...) Proof::Prove(#name, &::name, index++);
    LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_PROVE)
#undef LUMAVEN_PROVE
    EXPECT_EQ(index, 90);
}

TEST_F(ControlLibForwarders, EveryForwarderAnswersNotInitializedWhenTheLibraryLacksItsSymbol)
{
    Load("ControlLib-initonly.dll");
    LumavenSim::ClearTransactions();
    EXPECT_EQ(ExpectEveryForwarderAnswers(LumavenTest::IntelResults::kNotInitialized), 90);
    EXPECT_NE(controlLibModule, nullptr);
    EXPECT_TRUE(LumavenSim::TransactionLog::Read().Empty());
}

TEST_F(ControlLibForwarders, TheSymbolIsLookedUpAgainAfterTheLibraryWasReplaced)
{
    const ctl_api_handle_t api = Load("ControlLib.dll");
    uint32_t count = 0;
    EXPECT_EQ(ctlEnumerateDevices(api, &count, nullptr), CTL_RESULT_SUCCESS);
    ASSERT_EQ(ctlClose(api), CTL_RESULT_SUCCESS);
    ASSERT_EQ(controlLibModule, nullptr);

    // Same name in system32, but this one lacks the symbol: no stale address may be called.
    Load("ControlLib-initonly.dll");
    EXPECT_EQ(ctlEnumerateDevices(api, &count, nullptr), LumavenTest::IntelResults::kNotInitialized);
}
