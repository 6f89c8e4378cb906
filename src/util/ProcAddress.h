// The one way the service binds a function that a library loaded at run time exports: by
// name, as a pointer of the caller's own function type.
#pragma once

#include <windows.h>

#include <type_traits>

namespace LumavenUtil {

// `name` in `module` as a `Function` (a function pointer type); null when the module does not
// export it. The caller makes sure `module` is a loaded library: GetProcAddress on a null
// module searches the executable instead.
template <class Function>
Function ResolveProc(HMODULE module, const char* name)
{
    static_assert(std::is_pointer_v<Function> && std::is_function_v<std::remove_pointer_t<Function>>,
                  "a function pointer type");
    // Through the generic function pointer type void(*)(), which converts to any other
    // without a cast-function-type warning.
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace LumavenUtil
