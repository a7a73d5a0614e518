#include "core/common/content_sum.h"

#include "core/common/containers.h"
#include "core/os/files.h"

#include <cstdlib>

#include <xxhash.h>

namespace pellux {

ContentSummer::ContentSummer() : state_(XXH3_createState()) {
    // Without memory for a few hundred bytes nothing else goes on either.
    if (state_ == nullptr || XXH3_128bits_reset(state_) != XXH_OK)
        std::abort();
}

ContentSummer::~ContentSummer() {
    XXH3_freeState(state_);
}

void ContentSummer::add(std::string_view piece) {
    static_cast<void>(XXH3_128bits_update(state_, piece.data(), piece.size()));
}

ContentSum ContentSummer::sum() const {
    const XXH128_hash_t sum = XXH3_128bits_digest(state_);
    return {.high = sum.high64, .low = sum.low64};
}

SystemError sum_file(std::string_view path, ContentSum& content) {
    File file;
    if (const SystemError error = open_file(file, path, OpenMode::read); failed(error))
        return error;
    ContentSummer summer;
    constexpr std::size_t k_chunk_bytes = std::size_t{1} << 16;
    Vector<char> buffer(k_chunk_bytes);
    for (std::size_t got = 1; got > 0;) {
        const SystemError error = read_some(file, std::as_writable_bytes(std::span(buffer)), got);
        if (failed(error))
            return error;
        summer.add({buffer.data(), got});
    }
    content = summer.sum();
    return SystemError::none;
}

} // namespace pellux
