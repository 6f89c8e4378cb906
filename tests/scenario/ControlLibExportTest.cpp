// The ctl* exports of the built LumavenService.dll, called as another program would call them:
// looked up by name in the module, each forwarder reaches the simulated driver with its
// arguments unchanged and hands back the driver's own answer.
#include "ControlLibProof.h"
#include "SimMachine.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <type_traits>

namespace Proof = LumavenTest::ControlLibProof;

namespace {

struct ModuleFreer {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

template <class Function>
Function Export(HMODULE module, const char* name)
{
    // Through void(*)(): GCC accepts a cast from it to any function type without a warning.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace

TEST(ControlLibExports, EveryExportedForwarderReachesTheDriverUnchanged)
{
    LumavenTest::InstallProfile(Proof::Profile("ControlLib.dll"));
    const Module service(LoadLibraryW((LumavenTest::ExecutableDirectory() + L"\\LumavenService.dll").c_str()));
    ASSERT_NE(service, nullptr);
    const auto init = Export<ctl_result_t(CTL_APICALL*)(ctl_init_args_t*, ctl_api_handle_t*)>(service.get(), "ctlInit");
    const auto close = Export<ctl_result_t(CTL_APICALL*)(ctl_api_handle_t)>(service.get(), "ctlClose");
    ASSERT_NE(init, nullptr);
    ASSERT_NE(close, nullptr);
    ctl_init_args_t args{};
    args.Size = sizeof args;
    args.AppVersion = 0x00010000;
    ctl_api_handle_t api = nullptr;
    ASSERT_EQ(init(&args, &api), CTL_RESULT_SUCCESS);

    int index = 0;
#define LUMAVEN_PROVE_EXPORT(name, ...)                                                                  \
    {                                                                                                    \
        const auto forwarder = Export<ctl_result_t(CTL_APICALL*)(__VA_ARGS__)>(service.get(), #name);    \
        EXPECT_NE(forwarder, nullptr) << #name;                                                          \
        if (forwarder != nullptr) {                                                                      \
            Proof::Prove(#name, forwarder, index);                                                       \
        }                                                                                                \
        ++index;                                                                                         \
    }
    LUMAVEN_CTL_FUNCTIONS(LUMAVEN_CTL_NOTHING, LUMAVEN_PROVE_EXPORT)
#undef LUMAVEN_PROVE_EXPORT
    EXPECT_EQ(index, 90);

    // Unloads the driver again, so the next test's profile can replace it.
    EXPECT_EQ(close(api), CTL_RESULT_SUCCESS);
}
