#include "core/common/content_sum.h"

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

} // namespace pellux
