// The type names the service prints read as the Windows compiler prints them
// ("class Xelto::Spanlet::Server::Services::UtilHelper"). MSVC's typeid already gives that;
// GCC and Clang (which also defines __GNUC__) give an Itanium-mangled name, which is
// demangled here. This is the one header that asks which compiler builds it. Elsewhere the
// code uses only the Windows keywords that every Windows compiler accepts: the __stdcall
// calling convention of the vendor callbacks and interfaces, and __declspec(dllexport/
// dllimport) in the host's logging header.
#pragma once

#include <string>
#include <typeinfo>

#if defined(__GNUC__)
#include "util/UniqueHandles.h"

#include <cxxabi.h>
#endif

namespace LumavenUtil {

inline std::string UndecoratedClassName(const std::type_info& type)
{
#if defined(__GNUC__)
    int status = 0;
    // The demangler hands back a malloc'ed text.
    const MallocPtr<char> demangled(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status));
    std::string name = "class ";
    name += (status == 0 && demangled != nullptr) ? demangled.get() : type.name();
    return name;
#else
    return type.name();
#endif
}

// The undecorated name of a class. Made on each call, not kept in a function-local static:
// such a static's first-use guard runs through the thread runtime's once-object, which
// crashes when its allocation fails, and the first call may come when memory is short.
template <class T>
std::string TypeNameOf()
{
    return UndecoratedClassName(typeid(T));
}

}  // namespace LumavenUtil
