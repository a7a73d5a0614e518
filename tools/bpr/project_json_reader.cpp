#include "core/common/hex.h"
#include "core/common/utf8.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_json.h"
#include "tools/bpr/project_slots.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <string>

namespace pellux {
namespace {

/// What `slot` holds if it is a `T`, else null.
template <typename T>
T* pointer_in(const Slot& slot) {
    T* const* pointer = std::get_if<T*>(&slot);
    return pointer == nullptr ? nullptr : *pointer;
}

/// Pairs of hexadecimal digits, one blank or none between them.
template <typename Bytes>
bool parse_hex(std::string_view text, Bytes& bytes) {
    bytes.clear();
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2) {
        i += i > 0 && text[i] == ' ' ? 1 : 0;
        if (i + 1 >= text.size())
            return false;
        const unsigned high = hex_value(text[i]);
        const unsigned low = hex_value(text[i + 1]);
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
    ProjectBuilder(ProjectHeader& header, Project& project) : document_{&header, &project} {}

    bool null() {
        const Slot slot = next_slot();
        if (auto* text = pointer_in<NullableText>(slot))
            text->clear();
        else if (!std::holds_alternative<TopDesign>(slot))
            return misfit(slot);
        return true;
    }
    bool boolean(bool) { return misfit(next_slot()); }
    bool number_integer(std::int64_t value) {
        const Slot slot = next_slot();
        if (!std::holds_alternative<TopDesign>(slot))
            return store_number(slot, value) || misfit(slot);
        top_number_ = value;
        return value >= 0 || misfit(slot);
    }
    bool number_unsigned(std::uint64_t value) {
        constexpr auto k_largest = std::numeric_limits<std::int64_t>::max();
        return value <= std::uint64_t{k_largest} ? number_integer(static_cast<std::int64_t>(value))
                                                 : misfit(next_slot());
    }
    bool number_float(double, const std::string&) { return misfit(next_slot()); }
    bool string(const std::string& value) {
        const Slot slot = next_slot();
        if (auto* text = pointer_in<NullableText>(slot))
            return take_text(*text, value);
        if (std::holds_alternative<TopDesign>(slot))
            return take_text(top_name_, value);
        if (const TextHex* hex = std::get_if<TextHex>(&slot)) {
            String bytes;
            return parse_hex(value, bytes) ? take_text(*hex->text, view(bytes)) : misfit(slot);
        }
        auto* bytes = pointer_in<Vector<std::byte>>(slot);
        return (bytes != nullptr && parse_hex(value, *bytes)) || misfit(slot);
    }
    bool binary(const nlohmann::json::binary_t&) { return misfit(next_slot()); }

    bool start_object(std::size_t) {
        Slot slot = next_slot();
        if (auto* text = pointer_in<NullableText>(slot))
            slot = TextBytes{text};
        if (std::holds_alternative<TopDesign>(slot))
            slot = TextBytes{&top_name_};
        if (!is_object(slot))
            return misfit(slot);
        open_.push_back({.record = slot});
        return true;
    }
    bool key(const std::string& key) {
        Open& object = open_.back();
        const FieldMatch field = find_field(object.record, key);
        object.key = field.bit != 0 ? field.name : std::string_view(key);
        if (field.bit == 0)
            return complain(msg_unknown_key);
        if ((object.seen & field.bit) != 0)
            return complain(msg_key_twice);
        object.seen |= field.bit;
        object.value = field.slot;
        return true;
    }
    bool end_object() {
        const Open object = open_.back();
        if (const auto* source = pointer_in<VHDL_source>(object.record)) {
            open_.back().key = "file_name";
            if (source->file_name.view().empty())
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
        if (!find_version(document_.header->version, version))
            return complain_at("header.version", msg_expect_version.text());
        std::int64_t number = 0;
        for (const Owned<VHDL_source>& source : document_.project->sources) {
            const bool is_top = number++ == top_number_ || source->file_name == top_name_;
            if (is_top && document_.project->top_design == nullptr)
                document_.project->top_design = source.get();
        }
        const bool has_top = top_number_ >= 0 || top_name_.present();
        return !has_top || document_.project->top_design != nullptr ||
               complain_at("project.top_design", msg_expect_source.text());
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
            return document_;
        Open& open = open_.back();
        if (!open.is_array)
            return open.value;
        const std::size_t index = open.started++;
        if (auto* words = pointer_in<Words>(open.record))
            return index < words->size() ? Slot(&(*words)[index]) : Slot(Nothing{});
        document_.project->sources.push_back(make_owned<VHDL_source>());
        return document_.project->sources.back().get();
    }

    bool take_text(NullableText& text, std::string_view bytes) {
        if (bytes.find('\0') != std::string_view::npos)
            return complain(msg_expect_characters);
        text.assign_without_nul(bytes);
        return true;
    }

    /// Complains of a value that is not what `slot` is for; false.
    bool misfit(const Slot& slot) {
        if (std::holds_alternative<Nothing>(slot))
            open_.pop_back(); // one element too many is the array's fault
        return complain_at(view(place()), view(expectation(slot)));
    }
    bool complain(Message<>& message) { return complain_at(view(place()), message.text()); }
    bool complain_at(std::string_view where, std::string_view what) {
        path = where.empty() ? "the document" : where;
        complaint = what;
        return false;
    }
    /// Path of the value that comes next, or came last.
    [[nodiscard]] String place() const {
        String result;
        for (const Open& open : open_) {
            if (open.is_array)
                result += format_text("[%zu]", open.started - 1);
            else
                result += (result.empty() ? "" : ".") + visible_text(open.key);
        }
        return result;
    }

    Document document_;
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
