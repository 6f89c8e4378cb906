// Small owning wrappers for the Windows handles the service opens, so that no early return
// leaks one.
#pragma once

#include <windows.h>
#include <setupapi.h>

#include <cstdlib>
#include <memory>

namespace LumavenUtil {

struct HkeyCloser {
    void operator()(HKEY key) const
    {
        if (key != nullptr && key != INVALID_HANDLE_VALUE) {
            RegCloseKey(key);
        }
    }
};
using UniqueHkey = std::unique_ptr<std::remove_pointer_t<HKEY>, HkeyCloser>;

struct DevInfoDestroyer {
    void operator()(HDEVINFO set) const
    {
        if (set != nullptr && set != INVALID_HANDLE_VALUE) {
            SetupDiDestroyDeviceInfoList(set);
        }
    }
};
using UniqueDevInfo = std::unique_ptr<void, DevInfoDestroyer>;

struct ModuleFreer {
    void operator()(HMODULE module) const
    {
        if (module != nullptr) {
            FreeLibrary(module);
        }
    }
};
using UniqueModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

struct CFree {
    void operator()(void* block) const { std::free(block); }
};
template <class T>
using MallocPtr = std::unique_ptr<T, CFree>;

}  // namespace LumavenUtil
