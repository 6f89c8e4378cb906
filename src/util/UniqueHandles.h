// Small owning wrappers for the handles, modules and buffers the service holds, so that no
// early return leaks one.
#pragma once

#include <windows.h>
#include <setupapi.h>

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace LumavenUtil {

// A Win32 handle that counts INVALID_HANDLE_VALUE, which some APIs (SetupDiGetClassDevsW,
// SetupDiOpenDevRegKey) answer on failure, as no handle at all, just like null: an owner
// holding it tests as empty, and nothing is ever closed for it. Serves as the pointer type of
// the owners below.
template <class Handle>
class NullableHandle {
public:
    NullableHandle() = default;
    NullableHandle(std::nullptr_t) {}
    NullableHandle(Handle handle) : m_handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    operator Handle() const { return m_handle; }
    explicit operator bool() const { return m_handle != nullptr; }

    friend bool operator==(NullableHandle a, NullableHandle b) { return a.m_handle == b.m_handle; }
    friend bool operator==(NullableHandle a, std::nullptr_t) { return a.m_handle == nullptr; }

private:
    Handle m_handle = nullptr;
};

struct HkeyCloser {
    using pointer = NullableHandle<HKEY>;
    void operator()(pointer key) const { RegCloseKey(key); }
};
using UniqueHkey = std::unique_ptr<std::remove_pointer_t<HKEY>, HkeyCloser>;

struct DevInfoDestroyer {
    using pointer = NullableHandle<HDEVINFO>;
    void operator()(pointer set) const { SetupDiDestroyDeviceInfoList(set); }
};
using UniqueDevInfo = std::unique_ptr<void, DevInfoDestroyer>;

struct ModuleFreer {
    void operator()(HMODULE module) const { FreeLibrary(module); }
};
using UniqueModule = std::unique_ptr<std::remove_pointer_t<HMODULE>, ModuleFreer>;

struct CFree {
    void operator()(void* block) const { std::free(block); }
};
template <class T>
using MallocPtr = std::unique_ptr<T, CFree>;

}  // namespace LumavenUtil
