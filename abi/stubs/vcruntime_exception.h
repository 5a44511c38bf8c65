/// @file
/// The root of the standard exceptions, which is the compiler's: the standard library only builds on it.
#pragma once

#include <stddef.h>
struct __std_exception_data
{
    const char* _What;
    bool _DoFree;
};
namespace std
{
class exception
{
public:
    exception() noexcept;
    explicit exception(const char*) noexcept;
    exception(const char*, int) noexcept;
    exception(const exception&) noexcept;
    exception& operator=(const exception&) noexcept;
    virtual ~exception() noexcept;
    virtual const char* what() const;

private:
    __std_exception_data _Data;
};
class bad_exception : public exception
{
public:
    bad_exception() noexcept;
};
class bad_alloc : public exception
{
public:
    bad_alloc() noexcept;
};
class bad_array_new_length : public bad_alloc
{
public:
    bad_array_new_length() noexcept;
};
}  // namespace std
