// What the behaviour tests need of the compiler's run-time library beside abi/run/Startup.cpp: the parts that LLVM's
// standard library leaves to it.
#include <new>
#include <string.h>
#include <typeinfo>

const char* type_info::raw_name() const noexcept
{
    return _Data._DecoratedName;
}

// Nobody reads the name but in the message of a failure.
const char* type_info::name() const noexcept
{
    return raw_name();
}

bool type_info::operator==(const type_info& other) const noexcept
{
    return strcmp(raw_name(), other.raw_name()) == 0;
}

namespace std
{

bad_cast::bad_cast() noexcept {}
bad_typeid::bad_typeid() noexcept {}
bad_exception::bad_exception() noexcept {}

[[noreturn]] void __throw_bad_alloc()
{
    throw bad_alloc();
}

}  // namespace std
