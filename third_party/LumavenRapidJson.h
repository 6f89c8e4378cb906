// The one way into RapidJSON for the whole tree: the service, the host, the simulated drivers,
// the tests and the bench include this header, never a <rapidjson/...> header directly
// (scripts/check-rapidjson.sh fails the test command otherwise).
//
// RapidJSON checks its own preconditions with RAPIDJSON_ASSERT, which defaults to assert():
// in a build without NDEBUG a request such as {"BValue":"\uDC00"} (a lone low surrogate in an
// escape) aborts the whole host process, while a release build silently stores the lone code
// unit. Neither is acceptable in a plug-in, so the check throws instead, in every build type,
// and callers decide what a failed check means. The service's request parser answers it as a
// malformed request.
//
// RapidJSON's default allocator returns null when malloc fails, and the library writes through
// that pointer. ThrowingAllocator turns the null into std::bad_alloc, so that running out of
// memory inside the library is an exception like everywhere else in C++.
#pragma once

#if defined(RAPIDJSON_RAPIDJSON_H_)
#error "RapidJSON was included before LumavenRapidJson.h: its assertion policy would not hold"
#endif

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace LumavenJson {

// A precondition of RapidJSON that did not hold; what() is the failed expression.
class AssertionFailure : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

[[noreturn]] inline void FailAssertion(const char* expression)
{
    throw AssertionFailure(expression);
}

// RapidJSON's CrtAllocator, except that a failed allocation throws std::bad_alloc. A failed
// realloc leaves the original block with its owner, who frees it as usual.
class ThrowingAllocator {
public:
    static const bool kNeedFree = true;
    void* Malloc(size_t size)
    {
        if (size == 0) {
            return nullptr;
        }
        return Checked(std::malloc(size));
    }
    void* Realloc(void* original, size_t, size_t newSize)
    {
        if (newSize == 0) {
            std::free(original);
            return nullptr;
        }
        return Checked(std::realloc(original, newSize));
    }
    static void Free(void* block) { std::free(block); }

private:
    static void* Checked(void* block)
    {
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        return block;
    }
};

}  // namespace LumavenJson

#define RAPIDJSON_ASSERT(x) ((x) ? static_cast<void>(0) : ::LumavenJson::FailAssertion(#x))

#include <rapidjson/document.h>
#include <rapidjson/encodings.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
