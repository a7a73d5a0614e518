#include "core/os/pages.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <sys/mman.h>

namespace pellux {

namespace {

constexpr std::size_t k_granule = 65536;
constexpr std::size_t k_large_page = std::size_t{2} << 20;
constexpr std::size_t k_large_from = std::size_t{8} << 20;

struct PagesState {
    PageFaultHook hook = nullptr;
    void* context = nullptr;
};
constinit PagesState pages_state;

std::size_t to_granule(std::uintptr_t value) {
    return (k_granule - value % k_granule) % k_granule;
}

/// Makes the range readable and writable up to `end` at least. A program that holds much gets large
/// pages, which its processor finds faster, and asks the system less often.
bool open_pages(PageRange& range, std::size_t end) {
    std::byte* const start = range.base + range.opened;
    if (end > k_large_from) {
        const auto address = reinterpret_cast<std::uintptr_t>(range.base + end);
        const std::size_t rounded = end + (k_large_page - address % k_large_page) % k_large_page;
        const std::size_t bytes = std::min(rounded, range.reserved) - range.opened;
        if (mprotect(start, bytes, PROT_READ | PROT_WRITE) == 0) {
            static_cast<void>(madvise(start, bytes, MADV_HUGEPAGE));
            range.opened += bytes;
            return true;
        }
    }
    if (mprotect(start, end - range.opened, PROT_READ | PROT_WRITE) != 0)
        return false;
    range.opened = end;
    return true;
}

} // namespace

bool reserve_pages(PageRange& range, std::size_t bytes) {
    // The system aligns to its own page only, so one granule more is asked for and trimmed.
    if (bytes == 0 || bytes % k_granule != 0 || bytes > SIZE_MAX - k_granule)
        return false;
    void* start = mmap(nullptr, bytes + k_granule, PROT_NONE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (start == MAP_FAILED)
        return false;
    const std::size_t before = to_granule(reinterpret_cast<std::uintptr_t>(start));
    std::byte* base = static_cast<std::byte*>(start) + before;
    if (before != 0)
        munmap(start, before);
    munmap(base + bytes, k_granule - before);
    range = {.base = base, .reserved = bytes, .committed = 0};
    return true;
}

std::byte* commit_pages(PageRange& range, std::size_t bytes) {
    assert(bytes % k_granule == 0);
    if (bytes > range.reserved - range.committed)
        return nullptr;
    if (pages_state.hook != nullptr && pages_state.hook(pages_state.context, bytes))
        return nullptr;
    std::byte* start = range.base + range.committed;
    if (range.committed + bytes > range.opened && !open_pages(range, range.committed + bytes))
        return nullptr;
    range.committed += bytes;
    return start;
}

void set_page_fault_hook(PageFaultHook hook, void* context) {
    pages_state = {.hook = hook, .context = context};
}

} // namespace pellux
