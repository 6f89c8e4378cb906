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

// The undecorated name of a class, made once and kept for the life of the module.
template <class T>
const char* TypeNameOf()
{
    static const std::string name = UndecoratedClassName(typeid(T));
    return name.c_str();
}

}  // namespace LumavenUtil
