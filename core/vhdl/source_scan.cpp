#include "core/vhdl/source_scan.h"

#include "core/vhdl/vhdl_lexer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_word_bytes = sizeof(std::uint64_t);
constexpr std::size_t k_first_slots = 1024;
constexpr std::size_t k_first_words = 1024;

/// Word of the arena with the first `length` bytes of `text`, eight at most, the rest NUL.
std::uint64_t load_word(std::string_view text, std::size_t length) {
    std::uint64_t word = 0;
    if (text.size() >= k_word_bytes) {
        std::memcpy(&word, text.data(), k_word_bytes);
        return length >= k_word_bytes ? word : word & ((std::uint64_t{1} << (8 * length)) - 1);
    }
    std::memcpy(&word, text.data(), std::min(length, k_word_bytes));
    return word;
}

/// Eight letters, digits and underlines in lower case at once.
std::uint64_t folded_word(std::uint64_t word) {
    constexpr std::uint64_t k_each = 0x0101010101010101;
    // The bit between the cases, shifted down from the one that letters and the underline have.
    const std::uint64_t letters = (word & 0x40 * k_each) >> 1;
    const std::uint64_t no_letters = (word & 0x1F * k_each) + k_each;
    return word | (letters & ~no_letters & 0x20 * k_each);
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15;
    return hash ^ hash >> 32;
}

/// Of a few words at most, for which calling a library function takes longer.
bool equal_words(const std::uint64_t* a, const std::uint64_t* b, std::size_t count) {
    std::uint64_t difference = 0;
    for (std::size_t i = 0; i < count; ++i)
        difference |= a[i] ^ b[i];
    return difference == 0;
}

// Longest first. Whatever GHDL takes as one delimiter, in all standards and PSL.
constexpr std::array<std::string_view, 29> k_compounds{
    "?/=", "?<=", "?>=", "|->", "|=>", "[->", "<->", "=>", "**", ":=", "/=", ">=", "<=", "<>", "??",
    "?=",  "?<",  "?>",  "<<",  ">>",  "->",  "&&",  "||", "[*", "[+", "[=", "{:", ":}", "<+"};

constexpr auto k_starts_compound = [] {
    std::array<bool, 128> starts{};
    for (const std::string_view compound : k_compounds)
        starts[static_cast<unsigned char>(compound[0])] = true;
    return starts;
}();

/// Bytes of the delimiter that `rest` begins with.
std::size_t delimiter_length(std::string_view rest) {
    const auto first = static_cast<unsigned char>(rest[0]);
    if (first >= k_starts_compound.size() || !k_starts_compound[first])
        return 1;
    for (const std::string_view compound : k_compounds) {
        if (rest.starts_with(compound))
            return compound.size();
    }
    return 1;
}

/// Hands tokens to the digester in large pieces, each behind a byte that no token contains.
class TokenDigester {
public:
    void add(bool apart, std::string_view token) {
        if (token.size() + 1 > k_room - text_.size())
            flush();
        text_ += apart ? '\n' : '\v';
        text_ += token;
    }
    Digest finish() {
        flush();
        return digester_.finish();
    }

private:
    static constexpr std::size_t k_room = 4096;

    void flush() {
        digester_.update(view(text_));
        text_.clear();
    }

    Digester digester_;
    String text_;
};

/// Would white space before the lexer's token, behind one of kind `kind` with the text `text`, make
/// a difference?
bool belongs_to_previous(const VhdlLexer& lexer, VhdlToken kind, std::string_view text) {
    if (text.data() + text.size() != lexer.begin)
        return false;
    const auto is_separate = [](VhdlToken one) {
        return one == VhdlToken::word || one == VhdlToken::extended || one == VhdlToken::number;
    };
    if (lexer.kind == VhdlToken::string)
        return kind == VhdlToken::number || (kind == VhdlToken::word && is_base_specifier(text));
    return is_separate(kind) && is_separate(lexer.kind);
}

struct UnitForm {
    std::string_view keyword;
    VhdlUnitKind kind;
    bool has_entity = false; ///< "of ENTITY" follows the name
};

constexpr std::array<UnitForm, 6> k_unit_forms{{
    {"entity", VhdlUnitKind::entity},
    {"package", VhdlUnitKind::package},
    {"architecture", VhdlUnitKind::architecture, true},
    {"configuration", VhdlUnitKind::configuration, true},
    {"context", VhdlUnitKind::context},
    {"vunit", VhdlUnitKind::other},
}};

/// The identifier that the lexer is at; empty without one.
String name_at(const VhdlLexer& lexer) {
    if (lexer.kind == VhdlToken::word)
        return folded_identifier(lexer.text());
    return lexer.kind == VhdlToken::extended ? String(lexer.text()) : String();
}

/// Reads on behind the keyword of `form`.
bool is_declaration(VhdlLexer lexer, const UnitForm& form, DeclaredUnit& unit) {
    unit.kind = form.kind;
    lexer.next();
    if (form.kind == VhdlUnitKind::package && lexer.is_word("body")) {
        unit.kind = VhdlUnitKind::package_body;
        lexer.next();
    }
    unit.name = name_at(lexer);
    lexer.next();
    if (form.has_entity) {
        if (!lexer.is_word("of"))
            return false;
        do {
            lexer.next();
            unit.entity = name_at(lexer);
            lexer.next();
        } while (lexer.text() == ".");
    }
    const bool begins = form.kind == VhdlUnitKind::other
                            ? lexer.text() == "(" || lexer.text() == "{"
                            : lexer.is_word("is");
    return begins && !unit.name.empty();
}

} // namespace

template <bool folds>
void Identifiers::add(std::string_view rest, std::size_t length) {
    const std::size_t words = (length + k_word_bytes - 1) / k_word_bytes;
    if (words > arena_.size() - used_words_)
        arena_.resize(std::max(k_first_words, 2 * (arena_.size() + words)));
    if (2 * count_ >= slots_.size())
        resize_slots(std::max(k_first_slots, 2 * slots_.size()));
    // The text is put where it would stay, and left there when it is new.
    std::uint64_t* text = arena_.data() + used_words_;
    std::uint64_t sum = length;
    for (std::size_t i = 0; i < words; ++i) {
        const std::size_t done = i * k_word_bytes;
        const std::uint64_t word = load_word(rest.substr(done), length - done);
        text[i] = folds ? folded_word(word) : word;
        sum = mixed(sum, text[i]);
    }
    const auto hash = static_cast<std::uint32_t>(sum);
    std::size_t at = hash & (slots_.size() - 1);
    for (; slots_[at].length != 0; at = (at + 1) & (slots_.size() - 1)) {
        const Slot& slot = slots_[at];
        if (slot.hash == hash && slot.length == length &&
            equal_words(text, arena_.data() + slot.first_word, words))
            return;
    }
    slots_[at] = {.hash = hash,
                  .length = static_cast<std::uint32_t>(length),
                  .first_word = static_cast<std::uint32_t>(used_words_)};
    used_words_ += words;
    ++count_;
}

void Identifiers::add_basic(std::string_view rest, std::size_t length) {
    add<true>(rest, length);
}

void Identifiers::add_extended(std::string_view rest, std::size_t length) {
    add<false>(rest, length);
}

bool Identifiers::contains(std::string_view name) const {
    std::uint64_t sum = name.size();
    for (std::size_t done = 0; done < name.size(); done += k_word_bytes)
        sum = mixed(sum, load_word(name.substr(done), name.size() - done));
    const auto hash = static_cast<std::uint32_t>(sum);
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hash & mask; count_ != 0 && slots_[at].length != 0;
         at = (at + 1) & mask) {
        if (slots_[at].hash == hash && text_of(slots_[at]) == name)
            return true;
    }
    return false;
}

void Identifiers::resize_slots(std::size_t count) {
    const Vector<Slot> old = std::exchange(slots_, Vector<Slot>(count));
    for (const Slot& slot : old) {
        if (slot.length == 0)
            continue;
        std::size_t at = slot.hash & (slots_.size() - 1);
        while (slots_[at].length != 0)
            at = (at + 1) & (slots_.size() - 1);
        slots_[at] = slot;
    }
}

void Identifiers::clear() {
    std::fill(slots_.begin(), slots_.end(), Slot{});
    used_words_ = 0;
    count_ = 0;
}

Identifiers Identifiers::compact() const {
    Identifiers same;
    same.count_ = count_;
    same.used_words_ = used_words_;
    same.arena_.assign(arena_.begin(), arena_.begin() + static_cast<std::ptrdiff_t>(used_words_));
    same.slots_ = slots_;
    same.resize_slots(count_ == 0 ? 0 : std::bit_ceil(2 * count_ + 1));
    return same;
}

void scan_source(std::string_view text, SourceScan& scan) {
    scan.identifiers.clear();
    scan.architectures.clear();
    scan.generic_instance = false;
    bool after_is = false;
    // "entity work.alu(rtl)", and "for rtl" in a configuration.
    bool names_architecture = false;
    VhdlLexer lexer(text);
    for (;;) {
        const VhdlToken kind = lexer.next();
        if (kind == VhdlToken::none)
            return;
        const std::string_view token = lexer.text();
        const std::string_view rest(token.data(), token.size() + lexer.rest().size());
        if (kind == VhdlToken::word) {
            scan.identifiers.add_basic(rest, token.size());
            if (names_architecture)
                scan.architectures.add_basic(rest, token.size());
            if (after_is && lexer.is_word("new"))
                scan.generic_instance = true;
        } else if (kind == VhdlToken::extended) {
            scan.identifiers.add_extended(token, token.size());
            if (names_architecture)
                scan.architectures.add_extended(token, token.size());
        }
        after_is = lexer.is_word("is");
        names_architecture = token == "(" || lexer.is_word("for");
    }
}

Digest token_digest(std::string_view text) {
    TokenDigester digester;
    VhdlLexer lexer(text);
    for (;;) {
        const VhdlToken previous_kind = lexer.kind;
        const std::string_view previous = lexer.text();
        if (lexer.next() == VhdlToken::none)
            return digester.finish();
        if (lexer.kind == VhdlToken::delimiter)
            lexer.at =
                lexer.begin +
                delimiter_length(text.substr(static_cast<std::size_t>(lexer.begin - text.data())));
        digester.add(!belongs_to_previous(lexer, previous_kind, previous), lexer.text());
    }
}

Vector<DeclaredUnit> declared_units(std::string_view text) {
    Vector<DeclaredUnit> units;
    for (VhdlLexer lexer(text); lexer.next() != VhdlToken::none;) {
        const auto* form =
            std::find_if(k_unit_forms.begin(), k_unit_forms.end(), [&](const UnitForm& candidate) {
                return lexer.is_word(candidate.keyword);
            });
        DeclaredUnit unit;
        if (form != k_unit_forms.end() && is_declaration(lexer, *form, unit))
            units.push_back(std::move(unit));
    }
    return units;
}

SourceScan compact(const SourceScan& scan) {
    return {scan.identifiers.compact(), scan.architectures.compact(), scan.generic_instance};
}

} // namespace pellux
