// Elements of a fixed size: taken and returned one at a time, in bulk, and in random order.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "support/BlockPool.h"
#include "support/QuonPoolAllocator.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/pool/pool.hpp>
#include <boost/pool/pool_alloc.hpp>
#include <cstdlib>
#include <memory>
#include <memory_resource>
#include <numeric>
#include <random>
#include <string>

using namespace quon_benchmark;

namespace
{

template <std::size_t Bytes>
struct Element
{
    void* fields[Bytes / sizeof(void*)];
};

// Each contender keeps its memory over the runs, as a long-lived pool of an application does.
template <std::size_t Bytes>
struct Quon
{
    QuonPoolAllocator<Element<Bytes>> pool;
    void* Take() { return pool.Allocate(); }
    void Give(void* element) { pool.Free(static_cast<Element<Bytes>*>(element)); }
};

// The functions of the pool as the host calls them. One element is held, so that the page stays.
template <std::size_t Bytes>
struct QuonFunctions
{
    void* freeElements = nullptr;
    void* held = Take();

    ~QuonFunctions() { Give(held); }

    void* Take()
    {
        std::size_t size = Bytes;
        if (freeElements == nullptr && PoolAddPage(&freeElements, &size) == nullptr)
        {
            throw std::bad_alloc();
        }
        return PoolAllocate(&freeElements);
    }
    void Give(void* element) { PoolFree(&freeElements, element); }
};

template <std::size_t Bytes>
struct Malloc
{
    void* Take() { return std::malloc(Bytes); }
    void Give(void* element) { std::free(element); }
};

template <std::size_t Bytes>
struct ProcessHeap
{
    HANDLE heap = ::GetProcessHeap();
    void* Take() { return ::HeapAlloc(heap, 0, Bytes); }
    void Give(void* element) { ::HeapFree(heap, 0, element); }
};

template <std::size_t Bytes>
struct BoostPool
{
    boost::pool<> pool{Bytes};
    void* Take() { return pool.malloc(); }
    void Give(void* element) { pool.free(element); }
};

template <std::size_t Bytes>
struct BoostFastAllocator
{
    boost::fast_pool_allocator<Element<Bytes>, boost::default_user_allocator_new_delete,
                               boost::details::pool::null_mutex>
        allocator;
    void* Take() { return allocator.allocate(); }
    void Give(void* element) { allocator.deallocate(static_cast<Element<Bytes>*>(element)); }
};

template <std::size_t Bytes>
struct Pmr
{
    std::pmr::unsynchronized_pool_resource resource;
    void* Take() { return resource.allocate(Bytes, alignof(void*)); }
    void Give(void* element) { resource.deallocate(element, Bytes, alignof(void*)); }
};

// The limit: a list of free elements cut from large blocks, that gives nothing back and knows nothing of its pages.
// Behind calls, as everything that a DLL does is.
template <std::size_t Bytes>
struct BareList
{
    struct Free
    {
        Free* next;
    };
    Free* free = nullptr;
    std::vector<std::unique_ptr<Element<Bytes>[]>> blocks;

    [[gnu::noinline]] void* Take()
    {
        if (free == nullptr)
        {
            Grow();
        }
        return std::exchange(free, free->next);
    }
    [[gnu::noinline]] void Give(void* element) { free = ::new (element) Free{free}; }

    void Grow()
    {
        constexpr std::size_t kCount = 65536 / Bytes;
        blocks.push_back(std::make_unique<Element<Bytes>[]>(kCount));
        for (std::size_t index = kCount; index-- > 0;)
        {
            Give(&blocks.back()[index]);
        }
    }
};

// The same with what the library promises besides: memory that comes from the system in regions of 16 pages, and goes
// back to it once all is free.
template <std::size_t Bytes>
struct ReturningList
{
    struct Free
    {
        Free* next;
    };
    static constexpr std::size_t kRegionBytes = 65536;
    Free* free = nullptr;
    std::size_t inUse = 0;
    std::vector<void*> regions;

    ~ReturningList()
    {
        for (void* const region : regions)
        {
            ::VirtualFree(region, 0, MEM_RELEASE);
        }
    }

    [[gnu::noinline]] void* Take()
    {
        if (free == nullptr)
        {
            Grow();
        }
        ++inUse;
        return std::exchange(free, free->next);
    }
    [[gnu::noinline]] void Give(void* element)
    {
        free = ::new (element) Free{free};
        if (--inUse == 0)
        {
            ReturnAll();
        }
    }

    void Grow()
    {
        regions.push_back(::VirtualAlloc(nullptr, kRegionBytes, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
        Link(regions.back());
    }
    // The last region stays, as in the library; its elements are linked anew only when others went.
    void ReturnAll()
    {
        if (regions.size() < 2)
        {
            return;
        }
        while (regions.size() > 1)
        {
            ::VirtualFree(regions.back(), 0, MEM_RELEASE);
            regions.pop_back();
        }
        free = nullptr;
        Link(regions.back());
    }
    void Link(void* region)
    {
        for (std::size_t index = kRegionBytes / Bytes; index-- > 0;)
        {
            free = ::new (static_cast<char*>(region) + index * Bytes) Free{free};
        }
    }
};

// Takes many elements and gives them back, in the order they were taken or in random order.
template <typename Pool>
class Crowd
{
public:
    explicit Crowd(int size) : m_elements(static_cast<std::size_t>(size)), m_shuffled(m_elements.size())
    {
        std::iota(m_shuffled.begin(), m_shuffled.end(), std::size_t{0});
        std::shuffle(m_shuffled.begin(), m_shuffled.end(), std::mt19937(7));
    }

    void Pairs()
    {
        for (std::size_t count = m_elements.size(); count != 0; --count)
        {
            void* const element = m_pool.Take();
            benchmark::DoNotOptimize(element);
            m_pool.Give(element);
        }
    }

    void Bulk()
    {
        TakeAll();
        for (void* const element : m_elements)
        {
            m_pool.Give(element);
        }
    }

    void Shuffled()
    {
        TakeAll();
        for (const std::size_t index : m_shuffled)
        {
            m_pool.Give(m_elements[index]);
        }
    }

    // Of as many elements a few stay in use: one in less than 64 KiB.
    void KeepSome()
    {
        TakeAll();
        for (std::size_t index = 0; index < m_elements.size(); ++index)
        {
            index % kOneStays == 0 ? m_kept.push_back(m_elements[index]) : m_pool.Give(m_elements[index]);
        }
    }

    void ReturnKept()
    {
        for (void* const element : m_kept)
        {
            m_pool.Give(element);
        }
        m_kept.clear();
    }

private:
    static constexpr std::size_t kOneStays = 400;

    void TakeAll()
    {
        for (void*& element : m_elements)
        {
            element = m_pool.Take();
            *static_cast<std::size_t*>(element) = 1;
        }
    }

    Pool m_pool;
    std::vector<void*> m_elements;
    std::vector<std::size_t> m_shuffled;
    std::vector<void*> m_kept;
};

template <typename Pool>
void AddPool(const std::string& bytes, int size, const std::string& contender)
{
    const auto crowd = std::make_shared<Crowd<Pool>>(size);
    Add("pair, " + bytes, size, contender, [crowd] { crowd->Pairs(); });
    Add("bulk, " + bytes, size, contender, [crowd] { crowd->Bulk(); });
    Add("shuffled, " + bytes, size, contender, [crowd] { crowd->Shuffled(); });

    const auto begin = [crowd] { crowd->KeepSome(); };
    const auto end = [crowd] { crowd->ReturnKept(); };
    const std::string crowded = ", " + bytes + ", others in use";
    AddWithin(
        "bulk" + crowded, size, contender, begin, [crowd] { crowd->Bulk(); }, end);
    AddWithin(
        "shuffled" + crowded, size, contender, begin, [crowd] { crowd->Shuffled(); }, end);
}

// No two live elements are the same, and each is there to be written.
template <typename Pool>
void Check(const std::string& contender)
{
    Pool pool;
    std::vector<void*> elements(5000);
    for (void*& element : elements)
    {
        element = pool.Take();
    }
    std::vector<void*> sorted = elements;
    std::sort(sorted.begin(), sorted.end());
    Require(std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end(),
            contender + " hands out an element twice");
    for (void* const element : elements)
    {
        pool.Give(element);
    }
}

template <typename Type>
struct PoolType
{
    using Pool = Type;
};

template <std::size_t Bytes, typename Visit>
void EachPool(const Visit& visit)
{
    visit("quon", PoolType<Quon<Bytes>>());
    visit("quon, PoolAllocate and PoolFree alone", PoolType<QuonFunctions<Bytes>>());
    visit("limit: bare free list", PoolType<BareList<Bytes>>());
    visit("bare free list that returns its memory", PoolType<ReturningList<Bytes>>());
    visit("boost::pool 1.81", PoolType<BoostPool<Bytes>>());
    visit("boost::fast_pool_allocator 1.81", PoolType<BoostFastAllocator<Bytes>>());
    visit("std::pmr::unsynchronized_pool_resource", PoolType<Pmr<Bytes>>());
    visit("malloc (msvcrt)", PoolType<Malloc<Bytes>>());
    visit("HeapAlloc", PoolType<ProcessHeap<Bytes>>());
}

template <std::size_t Bytes>
void AddAll(const Sizes& sizes)
{
    const std::string bytes = std::to_string(Bytes) + " bytes";
    EachPool<Bytes>([](const std::string& contender, auto type) { Check<typename decltype(type)::Pool>(contender); });
    for (const int size : sizes.UpTo(100000))
    {
        EachPool<Bytes>([&](const std::string& contender, auto type) {
            AddPool<typename decltype(type)::Pool>(bytes, size, contender);
        });
    }
    // A page holds what is left behind its header.
    std::size_t elementSize = Bytes;
    void* list = nullptr;
    void* const first = PoolAddPage(&list, &elementSize);
    Require(first != nullptr, "a page of the pool");
    std::size_t count = 0;
    while (list != nullptr)
    {
        PoolAllocate(&list);
        ++count;
    }
    Note("elements of " + bytes + " a page of 4096", static_cast<double>(count));
    Note("bytes an element of " + bytes + " costs", 4096.0 / static_cast<double>(count));
}

void AddContenders(const Sizes& sizes)
{
    AddAll<48>(sizes);
    AddAll<128>(sizes);
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
