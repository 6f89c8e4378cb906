// The type names the service prints read as the Windows compiler prints them
// ("class Xelto::Spanlet::Server::Services::UtilHelper"). MSVC's typeid already gives that;
// GCC gives a mangled name, which is demangled here. This is the one header with
// compiler-specific code.
#pragma once

#include <string>
#include <typeinfo>

#if defined(__GNUC__)
#include <cstdlib>
#include <cxxabi.h>
#endif

namespace LumavenUtil {

inline std::string UndecoratedClassName(const std::type_info& type)
{
#if defined(__GNUC__)
    int status = 0;
    char* demangled = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string name = "class ";
    name += (status == 0 && demangled != nullptr) ? demangled : type.name();
    std::free(demangled);
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
