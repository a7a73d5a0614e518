#include "core/common/hex.h"
#include "core/common/utf8.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_fields.h"
#include "tools/bpr/project_json.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <string>
#include <type_traits>
#include <variant>

namespace pellux {
namespace {

using Words = decltype(VHDL_source::words);

struct Nothing {};     ///< no value may stand here
struct Document {};    ///< the whole of it
struct SourceArray {}; ///< "sources"
struct TopDesign {};   ///< "top_design"
struct TextBytes {     ///< an object that gives a text by its bytes
    NullableText* text;
};
struct TextHex { ///< these bytes
    NullableText* text;
};

/// What a value of the document is for.
using Slot = std::variant<Nothing, Document, ProjectHeader*, Project*, VHDL_source*,
                          Source_options*, Screen_position*, Font_spec*, SourceArray, TopDesign,
                          NullableText*, TextBytes, TextHex, std::int16_t*, std::int32_t*,
                          std::uint32_t*, SourceKind*, Words*, Vector<std::byte>*>;

template <typename T>
constexpr bool k_is_record =
    std::is_same_v<T, ProjectHeader*> || std::is_convertible_v<T, const Object*>;
template <typename T>
constexpr bool k_is_object =
    k_is_record<T> || std::is_same_v<T, Document> || std::is_same_v<T, TextBytes>;

/// Looks for one key among the fields of a record.
struct FieldFinder {
    std::string_view key;
    std::string_view name{}; ///< the key again, for good
    Slot slot{};
    std::uint32_t bit = 0; ///< of the field, by its place in the record; 0: no such field
    std::uint32_t next_bit = 1;

    template <typename Target>
    void offer(std::string_view field, Target target) {
        if (field == key) {
            name = field;
            slot = target;
            bit = next_bit;
        }
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

/// Pairs of hexadecimal digits, one blank or none between them.
template <typename Bytes>
bool parse_hex(std::string_view text, Bytes& bytes) {
    bytes.clear();
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        i += i > 0 && text[i] == ' ' ? 1 : 0;
        if (i == text.size())
            return false;
        const unsigned high = hex_value(text[i]);
        const unsigned low = i + 1 < text.size() ? hex_value(text[i + 1]) : 16;
        if (high > 15 || low > 15)
            return false;
        bytes.push_back(static_cast<typename Bytes::value_type>(high * 16 + low));
    }
    return true;
}

/// Takes a document's parts as the parser meets them and puts each value where it belongs, so that
/// no tree of them is ever made. The first thing that does not fit ends the parsing: as no part can
/// stand where none is expected, that bounds the depth too.
class ProjectBuilder {
public:
    ProjectBuilder(ProjectHeader& header, Project& project) : header_(header), project_(project) {}

    bool null() {
        const Slot slot = next_slot();
        if (NullableText* const* text = std::get_if<NullableText*>(&slot))
            (*text)->clear();
        else if (!std::holds_alternative<TopDesign>(slot))
            return misfit(slot);
        return true;
    }
    bool boolean(bool) { return misfit(next_slot()); }
    bool number_integer(std::int64_t value) {
        const Slot slot = next_slot();
        return std::visit([&](auto target) { return take_number(target, value); }, slot) ||
               misfit(slot);
    }
    bool number_unsigned(std::uint64_t value) {
        constexpr auto k_largest = std::numeric_limits<std::int64_t>::max();
        return value <= std::uint64_t{k_largest} ? number_integer(static_cast<std::int64_t>(value))
                                                 : misfit(next_slot());
    }
    bool number_float(double, const std::string&) { return misfit(next_slot()); }
    bool string(const std::string& value) {
        const Slot slot = next_slot();
        if (NullableText* const* text = std::get_if<NullableText*>(&slot)) {
            return take_text(**text, value);
        }
        if (std::holds_alternative<TopDesign>(slot))
            return take_text(top_name_, value);
        if (const TextHex* hex = std::get_if<TextHex>(&slot)) {
            String bytes;
            return parse_hex(value, bytes) ? take_text(*hex->text, view(bytes)) : misfit(slot);
        }
        Vector<std::byte>* const* bytes = std::get_if<Vector<std::byte>*>(&slot);
        return (bytes != nullptr && parse_hex(value, **bytes)) || misfit(slot);
    }
    bool binary(const nlohmann::json::binary_t&) { return misfit(next_slot()); }

    bool start_object(std::size_t) {
        Slot slot = next_slot();
        if (NullableText* const* text = std::get_if<NullableText*>(&slot))
            slot = TextBytes{*text};
        if (std::holds_alternative<TopDesign>(slot))
            slot = TextBytes{&top_name_};
        if (!std::visit([]<typename T>(T) { return k_is_object<T>; }, slot))
            return misfit(slot);
        open_.push_back({.record = slot});
        return true;
    }
    bool key(const std::string& key) {
        Open& object = open_.back();
        FieldFinder finder{.key = key};
        std::visit(
            [&]<typename T>(T record) {
                if constexpr (k_is_record<T>) {
                    visit_fields(finder, *record);
                } else if constexpr (std::is_same_v<T, TextBytes>) {
                    finder.offer("bytes", TextHex{record.text});
                } else {
                    finder.record("header", header_);
                    finder.record("project", project_);
                }
            },
            object.record);
        object.key = finder.bit != 0 ? finder.name : std::string_view(key);
        if (finder.bit == 0)
            return complain(msg_unknown_key);
        if ((object.seen & finder.bit) != 0)
            return complain(msg_key_twice);
        object.seen |= finder.bit;
        object.value = finder.slot;
        return true;
    }
    bool end_object() {
        const Open object = open_.back();
        if (VHDL_source* const* source = std::get_if<VHDL_source*>(&object.record)) {
            open_.back().key = "file_name";
            if ((*source)->file_name.view().empty())
                return complain(msg_expect_name);
        }
        open_.pop_back();
        return !std::holds_alternative<TextBytes>(object.record) || object.seen != 0 ||
               misfit(object.record);
    }

    bool start_array(std::size_t) {
        const Slot slot = next_slot();
        if (!std::holds_alternative<SourceArray>(slot) && !std::holds_alternative<Words*>(slot))
            return misfit(slot);
        open_.push_back({.record = slot, .is_array = true});
        return true;
    }
    bool end_array() {
        const Open array = open_.back();
        open_.pop_back();
        return std::holds_alternative<SourceArray>(array.record) ||
               array.started == std::tuple_size_v<Words> || misfit(array.record);
    }

    template <typename Exception>
    bool parse_error(std::size_t position, const std::string&, const Exception& exception) {
        constexpr int k_number_overflow = 406;
        if (exception.id == k_number_overflow)
            return misfit(next_slot());
        error_position = position;
        return false;
    }

    /// To be asked when all was taken.
    bool finish() {
        ProjectVersion version{};
        if (!find_version(header_.version, version))
            return complain_at("header.version", msg_expect_version);
        std::int64_t number = 0;
        for (const Owned<VHDL_source>& source : project_.sources) {
            const bool is_top = number++ == top_number_ || source->file_name == top_name_;
            if (is_top && project_.top_design == nullptr)
                project_.top_design = source.get();
        }
        const bool has_top = top_number_ >= 0 || top_name_.present();
        return !has_top || project_.top_design != nullptr ||
               complain_at("project.top_design", msg_expect_source);
    }

    String path;                    ///< of the value that does not fit
    String complaint;               ///< empty: none
    std::size_t error_position = 0; ///< of the byte, from 1, where the text is no JSON

private:
    /// An object or array whose end did not come yet.
    struct Open {
        Slot record;
        Slot value{};            ///< an object's field that comes next
        std::string_view key{};  ///< its name
        std::uint32_t seen = 0;  ///< bits of an object's fields
        std::size_t started = 0; ///< an array's elements
        bool is_array = false;
    };

    Slot next_slot() {
        if (open_.empty())
            return Document{};
        Open& open = open_.back();
        if (!open.is_array)
            return open.value;
        const std::size_t index = open.started++;
        if (Words* const* words = std::get_if<Words*>(&open.record))
            return index < (*words)->size() ? Slot(&(**words)[index]) : Slot(Nothing{});
        project_.sources.push_back(make_owned<VHDL_source>());
        return project_.sources.back().get();
    }

    bool take_text(NullableText& text, std::string_view bytes) {
        if (bytes.find('\0') != std::string_view::npos)
            return complain(msg_expect_characters);
        text.assign_without_nul(bytes);
        return true;
    }

    template <typename Target>
    bool take_number(Target target, std::int64_t value) {
        if constexpr (std::is_same_v<Target, TopDesign>) {
            top_number_ = value;
            return value >= 0;
        } else if constexpr (std::is_same_v<Target, SourceKind*>) {
            *target = SourceKind{static_cast<std::int16_t>(value)};
            return value == 0 || value == 1;
        } else if constexpr (std::is_pointer_v<Target>) {
            if constexpr (std::is_integral_v<std::remove_pointer_t<Target>>) {
                *target = static_cast<std::remove_pointer_t<Target>>(value);
                return *target == value;
            }
        }
        return false;
    }

    /// Complains of a value that is not what `slot` is for.
    bool misfit(const Slot& slot) {
        return std::visit([&]<typename T>(T) { return misfit_of<T>(); }, slot);
    }
    template <typename Target>
    bool misfit_of() {
        if constexpr (std::is_same_v<Target, NullableText*> || std::is_same_v<Target, TextBytes>) {
            return complain(msg_expect_text);
        } else if constexpr (k_is_object<Target>) {
            return complain(msg_expect_object);
        } else if constexpr (std::is_same_v<Target, SourceArray>) {
            return complain(msg_expect_array);
        } else if constexpr (std::is_same_v<Target, TopDesign>) {
            return complain(msg_expect_source);
        } else if constexpr (std::is_same_v<Target, SourceKind*>) {
            return complain(msg_expect_kind);
        } else if constexpr (std::is_same_v<Target, Vector<std::byte>*> ||
                             std::is_same_v<Target, TextHex>) {
            return complain(msg_expect_bytes);
        } else if constexpr (std::is_same_v<Target, Words*>) {
            return complain(msg_expect_words);
        } else if constexpr (std::is_same_v<Target, Nothing>) {
            open_.pop_back();
            return complain(msg_expect_words);
        } else {
            using Limits = std::numeric_limits<std::remove_pointer_t<Target>>;
            return complain(msg_expect_number, Limits::min(), Limits::max());
        }
    }

    /// Notes what is expected of the value that comes next, or came last; false.
    template <typename... Arguments>
    bool complain(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
        String place;
        for (const Open& open : open_) {
            if (open.is_array) {
                place += format_text("[%zu]", open.started - 1);
            } else {
                place += place.empty() ? "" : ".";
                place += view(visible_text(open.key));
            }
        }
        return complain_at(place.empty() ? "the document" : view(place), message, arguments...);
    }
    template <typename... Arguments>
    bool complain_at(std::string_view place, Message<Arguments...>& message,
                     std::type_identity_t<Arguments>... arguments) {
        path = place;
        complaint = format_message(message, arguments...);
        return false;
    }

    ProjectHeader& header_;
    Project& project_;
    Vector<Open> open_;
    std::int64_t top_number_ = -1; ///< of the top design, which may stand before the sources
    NullableText top_name_;
};

/// Tells where, by the byte's number from 1, a text is no JSON.
void tell_not_json(std::string_view text, const char* name, std::size_t position) {
    int line = 1;
    int column = 1;
    for (const char c : text.substr(0, position > 0 ? position - 1 : 0)) {
        line += c == '\n' ? 1 : 0;
        column = c == '\n' ? 1 : column + (is_continuation(c) ? 0 : 1);
    }
    tell(msg_not_json, name, line, column);
}

} // namespace

Owned<Project> project_from_json(std::string_view text, const char* name, ProjectHeader& header) {
    auto project = make_owned<Project>();
    ProjectBuilder builder(header, *project);
    const bool parsed = nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder);
    if (parsed && text.find('\0') != std::string_view::npos)
        builder.error_position = text.find('\0') + 1; // the parser takes it for the end
    else if (parsed && builder.finish()) {
        if (!project->options.library.view().empty())
            tell(msg_library_unused, name);
        return project;
    }
    if (builder.complaint.empty())
        tell_not_json(text, name, builder.error_position);
    else
        tell(msg_bad_value, name, builder.path.c_str(), builder.complaint.c_str());
    return nullptr;
}

} // namespace pellux
