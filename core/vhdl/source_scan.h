#pragma once

#include "core/common/containers.h"
#include "core/common/digest.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellux {

/// The different identifiers of a text, in no order. Basic ones are in lower case as GHDL folds
/// them (ASCII and Latin-1), extended ones stand with their backslashes.
///
/// An open-addressing table, never more than half full, over texts in one arena. Together they must
/// stay below 4 GiB.
class Identifiers {
public:
    /// `name` in the form above.
    [[nodiscard]] bool contains(std::string_view name) const;
    [[nodiscard]] std::size_t size() const { return count_; }
    /// Calls `visit(std::string_view)` for each; the views live until the next change.
    template <typename Visit>
    void for_each(Visit visit) const {
        for (const Slot& slot : slots_) {
            if (slot.length != 0)
                visit(text_of(slot));
        }
    }

    /// The first `length` bytes of `rest`, at least one, are the identifier as it stands in a text;
    /// what follows them is only looked at.
    void add_basic(std::string_view rest, std::size_t length);
    void add_extended(std::string_view rest, std::size_t length);
    /// Keeps the memory for the next text.
    void clear();
    /// The same in no more memory than it needs.
    [[nodiscard]] Identifiers compact() const;

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t length = 0;     ///< 0: free
        std::uint32_t first_word = 0; ///< of the text in `arena_`
    };

    [[nodiscard]] std::string_view text_of(const Slot& slot) const {
        return {reinterpret_cast<const char*>(arena_.data() + slot.first_word), slot.length};
    }
    template <bool folds>
    void add(std::string_view rest, std::size_t length);
    void resize_slots(std::size_t count);

    Vector<Slot> slots_;          ///< a power of two, or none
    Vector<std::uint64_t> arena_; ///< each text from a new word on, filled up with NUL
    std::size_t used_words_ = 0;
    std::size_t count_ = 0;
};

struct SourceScan {
    Identifiers identifiers;       ///< reserved words too
    Identifiers architectures;     ///< those that stand where an architecture is named
    bool generic_instance = false; ///< "is new" occurs
};

/// What a text may refer to; replaces what `scan` held. Every identifier that GHDL sees in the text
/// is found, whatever else is wrong with it: a string without its end is taken to end with the
/// line.
void scan_source(std::string_view text, SourceScan& scan);
/// The same, to be kept.
[[nodiscard]] SourceScan compact(const SourceScan& scan);

/// Sum over the tokens as they stand: comments and white space do not matter, all else does, upper
/// and lower case too.
[[nodiscard]] Digest token_digest(std::string_view text);

enum class VhdlUnitKind : std::uint8_t {
    entity,
    package, ///< package instances too
    package_body,
    architecture,
    configuration,
    context,
    other, ///< a verification unit
};

struct DeclaredUnit {
    VhdlUnitKind kind = VhdlUnitKind::other;
    String name;   ///< basic ones in lower case, extended ones with their backslashes
    String entity; ///< of an architecture or a configuration

    bool operator==(const DeclaredUnit&) const = default;
};

/// The design units that the text seems to declare, by its tokens alone: perhaps too many (a
/// package within an architecture), never too few.
[[nodiscard]] Vector<DeclaredUnit> declared_units(std::string_view text);

} // namespace pellux
