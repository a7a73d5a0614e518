#pragma once

#include <cstddef>

namespace pellux {

/// One range of address space, reserved without access, whose start is committed piece by piece.
///
/// Addresses are in bytes; `committed` never exceeds `reserved`. Never given back: the one range
/// of the program lives until exit. Failure: null or false, range unchanged.
struct PageRange {
    std::byte* base = nullptr;
    std::size_t reserved = 0;
    std::size_t committed = 0;
    std::size_t opened = 0; ///< readable and writable, maybe more than is committed
};

/// Reserves `bytes` of address space, aligned to 64 KB; false when the system refuses.
[[nodiscard]] bool reserve_pages(PageRange& range, std::size_t bytes);

/// Makes the next `bytes` (a multiple of 65536) of the range readable and writable and returns
/// their start, zero-filled; null when the system refuses or the range is used up.
[[nodiscard]] std::byte* commit_pages(PageRange& range, std::size_t bytes);

/// Tests refuse commits: the hook sees the wanted bytes and answers whether to refuse. Null
/// removes it.
using PageFaultHook = bool (*)(void* context, std::size_t bytes);
void set_page_fault_hook(PageFaultHook hook, void* context);

} // namespace pellux
