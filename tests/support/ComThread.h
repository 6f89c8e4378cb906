// Checks on a thread's COM state, for code that joins and leaves apartments itself.
#pragma once

#include <windows.h>
#include <objbase.h>

#include <thread>

namespace LumavenTest {

// Runs `work` on a thread of its own, outside any apartment at first, so that the calling
// thread's COM state plays no part and the new thread's state can be checked afterwards.
template <class Work>
void OnFreshThread(Work work)
{
    std::thread thread(work);
    thread.join();
}

// Whether the calling thread is in no apartment now: joining a single-threaded one then
// answers S_OK, where S_FALSE would mean it was in one already and RPC_E_CHANGED_MODE that
// it is in the multithreaded one.
inline bool ThreadIsOutsideCom()
{
    const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (SUCCEEDED(result)) {
        CoUninitialize();
    }
    return result == S_OK;
}

}  // namespace LumavenTest
