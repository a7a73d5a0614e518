#pragma once

#include "tools/driver/compile/compile_session.h"

#include <cstddef>
#include <cstdint>

namespace pellux {

// Sources that stand next to each other and are analysed by one call of GHDL, as if each had its
// own.

struct BatchEntry {
    std::size_t source = 0;
    SourceDecision decision;
    bool is_analysed = true; ///< else it is up to date, and only waits to be told
};

struct AnalysisBatch {
    Vector<BatchEntry> entries; ///< in the order of the list
    std::size_t count = 0;      ///< of those that are analysed
    std::size_t library = 0;    ///< that they are analysed into
    std::size_t bytes = 0;      ///< of their texts
    TextSet units;              ///< that they seem to declare: kind, name, entity
    TextSet names;              ///< by which these are found
};

/// May the text mean a unit that the batch is to make? Then what becomes of it hangs on the batch.
[[nodiscard]] bool hangs_on(const AnalysisBatch& batch, const SourceScan& scan);
/// Would no source of the batch see that an up-to-date one stands before it?
[[nodiscard]] bool may_overtake(const AnalysisBatch& batch, const CompileSession& session,
                                std::size_t source);
/// Does one call analyse the source behind those of the batch, as a call of its own would? Sources
/// that declare the same unit need calls of their own: GHDL marks the first one as obsolete.
[[nodiscard]] bool may_join(const AnalysisBatch& batch, const CompileSession& session,
                            std::size_t source);
/// Does it take a unit from another source? It is then analysed alone.
[[nodiscard]] bool takes_a_unit(const CompileSession& session, std::size_t source);
void join_batch(AnalysisBatch& batch, const CompileSession& session, BatchEntry entry);

/// How much one call may get: little after a failure, and no more than is told soon enough.
class CallSize {
public:
    [[nodiscard]] std::size_t sources_max() const { return sources_max_; }
    [[nodiscard]] std::size_t bytes_max() const { return bytes_max_; }
    void note_success(std::size_t bytes, std::int64_t took_ms);
    void note_failure() { sources_max_ = 1; }

private:
    std::size_t sources_max_ = 1024;
    std::size_t bytes_max_ = 256 << 10; ///< until a rate is known
};

} // namespace pellux
