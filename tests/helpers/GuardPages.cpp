// Linked into every test program. With QUON_GUARD_PAGES in the environment it replaces what the library and the
// framework import of the C run-time's allocator, before main and for good.
//
// Every block gets pages of its own, at whose end it lies; the page behind it is never mapped, and a freed block's
// pages are never mapped again. Blocks cross the borders between the library, the framework and the test program, so
// each of them gets a free that knows whose a block is.
#include "helpers/GuardPages.h"

#include <afx.h>

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "helpers/ModuleNames.h"

namespace
{

using Byte = unsigned char;
using Malloc = void*(__cdecl*)(std::size_t);
using Calloc = void*(__cdecl*)(std::size_t, std::size_t);
using Realloc = void*(__cdecl*)(void*, std::size_t);
using Free = void(__cdecl*)(void*);

constexpr std::size_t kPage = 4096;
constexpr std::size_t kRegion = std::size_t{64} << 30;
constexpr std::size_t kAlignment = 16;
constexpr Byte kFill = 0xA5;
// Each costs the system two mappings, of which a process has some 65000. What exceeds this is not guarded.
constexpr long kMostLive = 20000;
constexpr std::size_t kMostBytes = std::size_t{64} << 20;

// At the start of a block's pages.
struct Header
{
    std::size_t size;
    std::size_t pages;  // this header's included
};

Byte* region = nullptr;
std::atomic<std::size_t> used = 0;
std::atomic<long> live = 0;
std::atomic<unsigned long long> guarded = 0;
Malloc plainMalloc = nullptr;
Realloc plainRealloc = nullptr;
Free plainFree = nullptr;

bool IsGuarded(const void* block)
{
    return block >= region && block < region + kRegion;
}

Byte* HeaderPage(void* block)
{
    // The block begins on the page behind its header's.
    const std::uintptr_t page = (reinterpret_cast<std::uintptr_t>(block) & ~(kPage - 1)) - kPage;
    return reinterpret_cast<Byte*>(page);
}

[[noreturn]] void Fail(const char* what)
{
    std::fprintf(stderr, "guard pages: %s\n", what);
    std::fflush(stderr);
    ::TerminateProcess(::GetCurrentProcess(), quon_test::kStepDetected);
    std::abort();
}

std::size_t Slack(std::size_t size)
{
    return (kAlignment - size % kAlignment) % kAlignment;
}

void* __cdecl GuardedMalloc(std::size_t size)
{
    size = size == 0 ? 1 : size;
    const std::size_t pages = 1 + (size + Slack(size) + kPage - 1) / kPage;
    if (size > kMostBytes || live >= kMostLive)
    {
        return plainMalloc(size);
    }
    const std::size_t at = used.fetch_add((pages + 1) * kPage);
    if (at + (pages + 1) * kPage > kRegion ||
        ::VirtualAlloc(region + at, pages * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr)
    {
        return plainMalloc(size);
    }
    ++live;
    ++guarded;
    *reinterpret_cast<Header*>(region + at) = {size, pages};
    Byte* const end = region + at + pages * kPage;
    Byte* const block = end - size - Slack(size);
    std::memset(block, kFill, size + Slack(size));
    return block;
}

void __cdecl GuardedFree(void* block)
{
    if (!IsGuarded(block))
    {
        plainFree(block);
        return;
    }
    Byte* page = HeaderPage(block);
    const Header header = *reinterpret_cast<Header*>(page);
    const Byte* const slack = static_cast<Byte*>(block) + header.size;
    for (std::size_t i = 0; i < Slack(header.size); ++i)
    {
        if (slack[i] != kFill)
        {
            Fail("a block was written past its end");
        }
    }
    ::VirtualFree(page, header.pages * kPage, MEM_DECOMMIT);
    --live;
}

void* __cdecl GuardedCalloc(std::size_t count, std::size_t size)
{
    if (size != 0 && count > SIZE_MAX / size)
    {
        return nullptr;
    }
    void* const block = GuardedMalloc(count * size);
    return block == nullptr ? nullptr : std::memset(block, 0, count * size);
}

void* __cdecl GuardedRealloc(void* block, std::size_t size)
{
    if (block != nullptr && !IsGuarded(block))
    {
        return plainRealloc(block, size);
    }
    if (size == 0 && block != nullptr)
    {
        GuardedFree(block);
        return nullptr;
    }
    void* const moved = GuardedMalloc(size);
    if (moved != nullptr && block != nullptr)
    {
        const std::size_t old = reinterpret_cast<Header*>(HeaderPage(block))->size;
        std::memcpy(moved, block, old < size ? old : size);
        GuardedFree(block);
    }
    return moved;
}

std::size_t __cdecl GuardedSize(void* block)
{
    return IsGuarded(block) ? reinterpret_cast<Header*>(HeaderPage(block))->size : ::_msize(block);
}

void Replace(void** slot, void* function)
{
    DWORD protection = 0;
    ::VirtualProtect(slot, sizeof(void*), PAGE_READWRITE, &protection);
    *slot = function;
    ::VirtualProtect(slot, sizeof(void*), protection, &protection);
}

// The program itself keeps its allocations: only what it frees may be the library's.
void ReplaceImport(void** slot, const char* name, bool isProgram)
{
    const struct
    {
        const char* name;
        void* function;
        bool alsoInProgram;
    } rows[] = {{"malloc", reinterpret_cast<void*>(&GuardedMalloc), false},
                {"calloc", reinterpret_cast<void*>(&GuardedCalloc), false},
                {"realloc", reinterpret_cast<void*>(&GuardedRealloc), true},
                {"free", reinterpret_cast<void*>(&GuardedFree), true},
                {"_msize", reinterpret_cast<void*>(&GuardedSize), true}};
    for (const auto& row : rows)
    {
        if (std::strcmp(name, row.name) == 0 && (!isProgram || row.alsoInProgram))
        {
            Replace(slot, row.function);
        }
    }
}

void ReplaceImports(const wchar_t* module)
{
    auto* const base = reinterpret_cast<Byte*>(::GetModuleHandleW(module));
    if (base == nullptr)
    {
        return;
    }
    const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* imported = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         imported->Name != 0; ++imported)
    {
        auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imported->OriginalFirstThunk);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imported->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address)
        {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
            {
                const auto* const entry = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
                ReplaceImport(reinterpret_cast<void**>(&address->u1.Function),
                              reinterpret_cast<const char*>(entry->Name), module == nullptr);
            }
        }
    }
}

const bool isInstalled = [] {
    if (::GetEnvironmentVariableW(L"QUON_GUARD_PAGES", nullptr, 0) == 0)
    {
        return false;
    }
    const HMODULE runtime = ::GetModuleHandleW(quon_test::kRunTimeModule);
    const auto plain = [runtime](const char* name) { return reinterpret_cast<void*>(::GetProcAddress(runtime, name)); };
    plainMalloc = reinterpret_cast<Malloc>(plain("malloc"));
    plainRealloc = reinterpret_cast<Realloc>(plain("realloc"));
    plainFree = reinterpret_cast<Free>(plain("free"));
    region = static_cast<Byte*>(::VirtualAlloc(nullptr, kRegion, MEM_RESERVE, PAGE_NOACCESS));
    if (region == nullptr || plainMalloc == nullptr || plainRealloc == nullptr || plainFree == nullptr)
    {
        Fail("cannot be set up");
    }
    for (const wchar_t* const module :
         {quon_test::kLibraryModule, quon_test::kFrameworkModule, static_cast<const wchar_t*>(nullptr)})
    {
        ReplaceImports(module);
    }
    return true;
}();

}  // namespace

unsigned long long quon_test::GuardedBlocks()
{
    return isInstalled ? guarded.load() : 0;
}
