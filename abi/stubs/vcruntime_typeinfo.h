/// @file
/// Type information and its exceptions, as the compiler's run-time declares them.
#pragma once

#include <vcruntime_exception.h>
struct __std_type_info_data
{
    const char* _UndecoratedName;
    const char _DecoratedName[1];
};
class type_info
{
public:
    virtual ~type_info();
    size_t hash_code() const noexcept;
    bool operator==(const type_info&) const noexcept;
    bool operator!=(const type_info&) const noexcept;
    bool before(const type_info&) const noexcept;
    const char* name() const noexcept;
    const char* raw_name() const noexcept;
    type_info(const type_info&) = delete;
    type_info& operator=(const type_info&) = delete;

private:
    mutable __std_type_info_data _Data;
};
namespace std
{
using ::type_info;
class bad_cast : public exception
{
public:
    bad_cast() noexcept;
};
class bad_typeid : public exception
{
public:
    bad_typeid() noexcept;
};
}  // namespace std
