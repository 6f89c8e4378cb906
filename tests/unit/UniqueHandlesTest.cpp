// The owning wrappers of util/UniqueHandles.h: what they hold, what they close, and that the
// failure value some APIs answer (INVALID_HANDLE_VALUE) is no handle at all.
#include "util/UniqueHandles.h"

#include <gtest/gtest.h>

#include <utility>

using LumavenUtil::UniqueDevInfo;
using LumavenUtil::UniqueHkey;
using LumavenUtil::UniqueModule;

namespace {

// Whether the registry still accepts `key` as an open key.
bool KeyIsOpen(HKEY key)
{
    DWORD subkeys = 0;
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS;
}

HKEY OpenSoftwareKey()
{
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_READ, &key), ERROR_SUCCESS);
    return key;
}

}  // namespace

TEST(UniqueHandles, HkeyHoldingInvalidHandleValueIsEmpty)
{
    // What SetupDiOpenDevRegKey answers when it cannot open a device key.
    const UniqueHkey key(static_cast<HKEY>(INVALID_HANDLE_VALUE));
    EXPECT_FALSE(key);
    EXPECT_TRUE(key == nullptr);
    EXPECT_EQ(static_cast<HKEY>(key.get()), nullptr);
}

TEST(UniqueHandles, HkeyHoldsAndClosesAnOpenKey)
{
    const HKEY raw = OpenSoftwareKey();
    {
        const UniqueHkey key(raw);
        EXPECT_TRUE(key);
        EXPECT_EQ(static_cast<HKEY>(key.get()), raw);
        EXPECT_TRUE(KeyIsOpen(key.get()));
    }
    EXPECT_FALSE(KeyIsOpen(raw)) << "closed when the owner went";
}

TEST(UniqueHandles, HkeyMovesOwnership)
{
    const HKEY raw = OpenSoftwareKey();
    UniqueHkey first(raw);
    UniqueHkey second = std::move(first);
    EXPECT_FALSE(first);  // a moved-from owner is empty
    EXPECT_TRUE(KeyIsOpen(second.get()));
    second.reset();
    EXPECT_FALSE(KeyIsOpen(raw));
}

TEST(UniqueHandles, DevInfoHoldingInvalidHandleValueIsEmpty)
{
    // What SetupDiGetClassDevsW answers on failure.
    const UniqueDevInfo devices(INVALID_HANDLE_VALUE);
    EXPECT_FALSE(devices);
}

TEST(UniqueHandles, ModuleIsFreedWithItsOwner)
{
    // A library the test process has not loaded yet, so its only reference is the owner's.
    const wchar_t* const name = L"msimg32.dll";
    ASSERT_EQ(GetModuleHandleW(name), nullptr);
    {
        const UniqueModule module(LoadLibraryW(name));
        ASSERT_TRUE(module);
        EXPECT_EQ(GetModuleHandleW(name), module.get());
    }
    EXPECT_EQ(GetModuleHandleW(name), nullptr);
}
