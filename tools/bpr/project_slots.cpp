#include "tools/bpr/project_slots.h"

#include "tools/bpr/messages.h"
#include "tools/bpr/project_fields.h"

#include <limits>
#include <type_traits>

namespace pellux {
namespace {

template <typename T>
constexpr bool k_is_record =
    std::is_same_v<T, ProjectHeader*> || std::is_convertible_v<T, const Object*>;

/// Compares one key with the fields that it visits.
struct FieldFinder {
    std::string_view key;
    FieldMatch match{};
    std::uint32_t next_bit = 1;

    template <typename Target>
    void offer(std::string_view field, Target target) {
        if (field == key)
            match = {field, target, next_bit};
        next_bit <<= 1;
    }

    void text(std::string_view field, NullableText& value) { offer(field, &value); }
    void words(std::string_view field, Words& value) { offer(field, &value); }
    void bytes(std::string_view field, Vector<std::byte>& value) { offer(field, &value); }
    void sources(std::string_view field, Project&) { offer(field, SourceArray{}); }
    void top_design(std::string_view field, Project&) { offer(field, TopDesign{}); }
    template <typename Number>
    void number(std::string_view field, Number& value) {
        offer(field, &value);
    }
    template <typename Record>
    void record(std::string_view field, Record& value) {
        offer(field, &value);
    }
};

/// One text for each kind of slot.
struct Expectation {
    String operator()(Nothing) const { return String(msg_expect_words.text()); }
    String operator()(SourceArray) const { return String(msg_expect_array.text()); }
    String operator()(TopDesign) const { return String(msg_expect_source.text()); }
    String operator()(NullableText*) const { return String(msg_expect_text.text()); }
    String operator()(TextBytes) const { return String(msg_expect_text.text()); }
    String operator()(TextHex) const { return String(msg_expect_bytes.text()); }
    String operator()(Vector<std::byte>*) const { return String(msg_expect_bytes.text()); }
    String operator()(Words*) const { return String(msg_expect_words.text()); }
    String operator()(SourceKind*) const { return String(msg_expect_kind.text()); }
    template <typename T>
    String operator()(T) const {
        using Number = std::remove_pointer_t<T>;
        if constexpr (std::is_integral_v<Number>)
            return format_message(msg_expect_number, std::numeric_limits<Number>::min(),
                                  std::numeric_limits<Number>::max());
        else
            return String(msg_expect_object.text());
    }
};

} // namespace

bool is_object(const Slot& slot) {
    return std::visit(
        []<typename T>(T) {
            return k_is_record<T> || std::is_same_v<T, Document> || std::is_same_v<T, TextBytes>;
        },
        slot);
}

FieldMatch find_field(const Slot& record, std::string_view key) {
    FieldFinder finder{.key = key};
    std::visit(
        [&]<typename T>(T target) {
            if constexpr (k_is_record<T>) {
                visit_fields(finder, *target);
            } else if constexpr (std::is_same_v<T, TextBytes>) {
                finder.offer("bytes", TextHex{target.text});
            } else if constexpr (std::is_same_v<T, Document>) {
                finder.record("header", *target.header);
                finder.record("project", *target.project);
            }
        },
        record);
    return finder.match;
}

bool store_number(const Slot& slot, std::int64_t value) {
    return std::visit(
        [&]<typename T>(T target) {
            using Number = std::remove_pointer_t<T>;
            if constexpr (std::is_same_v<T, SourceKind*>) {
                *target = value == 0 ? SourceKind::vhdl : SourceKind::pla;
                return value == 0 || value == 1;
            } else if constexpr (std::is_integral_v<Number>) {
                *target = static_cast<Number>(value);
                return *target == value;
            }
            return false;
        },
        slot);
}

String expectation(const Slot& slot) {
    return std::visit(Expectation{}, slot);
}

} // namespace pellux
