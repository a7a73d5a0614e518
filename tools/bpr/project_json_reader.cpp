#include "core/diagnostics/reporter.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_fields.h"
#include "tools/bpr/project_json.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <string>
#include <type_traits>

namespace pellux {
namespace {

using Json = nlohmann::json;

/// The first thing of a document that does not fit.
struct Complaint {
    String path; ///< of the value in the document
    String text; ///< empty: none so far
};

/// UTF-8 of code points up to 255 back to bytes; false for anything else.
bool to_bytes(const std::string& utf8, String& result) {
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte >= 0x80) {
            if (byte > 0xC3 || i + 1 == utf8.size())
                return false;
            byte = static_cast<unsigned char>(byte << 6 |
                                              (static_cast<unsigned char>(utf8[++i]) & 0x3F));
        }
        if (byte == 0)
            return false;
        result += static_cast<char>(byte);
    }
    return true;
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

/// Fills one record from one JSON object and complains of the keys that nobody asked for.
class JsonReader {
public:
    JsonReader(const Json& json, String path, Complaint& complaint)
        : json_(json), path_(std::move(path)), complaint_(complaint) {
        if (!json.is_object())
            complain(path_, msg_expect_object);
    }

    void text(const char* key, NullableText& value) {
        const Json* found = take(key);
        if (found == nullptr)
            return;
        if (found->is_null()) {
            value.clear();
            return;
        }
        String bytes;
        if (!found->is_string())
            complain(child(key), msg_expect_text);
        else if (!to_bytes(found->get_ref<const std::string&>(), bytes))
            complain(child(key), msg_expect_characters);
        else
            value.assign(view(bytes));
    }

    template <typename Number>
    void number(const char* key, Number& value) {
        if (const Json* found = take(key))
            read_number(*found, child(key), value);
    }

    void words(const char* key, std::array<std::uint32_t, 8>& value) {
        const Json* found = take(key);
        if (found == nullptr)
            return;
        if (!found->is_array() || found->size() != value.size()) {
            complain(child(key), msg_expect_words);
            return;
        }
        for (std::size_t i = 0; i < value.size(); ++i)
            read_number((*found)[i], child(key, i), value[i]);
    }

    void bytes(const char* key, Vector<std::byte>& value) {
        const Json* found = take(key);
        if (found == nullptr)
            return;
        if (!found->is_string()) {
            complain(child(key), msg_expect_bytes);
            return;
        }
        const auto& text = found->get_ref<const std::string&>();
        value.clear();
        for (std::size_t i = 0; i < text.size(); i += 2) {
            const int high = hex_digit(text[i]);
            const int low = i + 1 < text.size() ? hex_digit(text[i + 1]) : -1;
            if (high < 0 || low < 0) {
                complain(child(key), msg_expect_bytes);
                return;
            }
            value.push_back(static_cast<std::byte>(high * 16 + low));
        }
    }

    template <typename Visit>
    void record(const char* key, Visit visit) {
        const Json* found = take(key);
        if (found == nullptr)
            return;
        JsonReader inner(*found, child(key), complaint_);
        visit(inner);
        inner.finish();
    }

    void sources(const char* key, Project& project) {
        const Json* found = take(key);
        if (found == nullptr)
            return;
        if (!found->is_array()) {
            complain(child(key), msg_expect_array);
            return;
        }
        for (std::size_t i = 0; i < found->size(); ++i) {
            auto source = make_owned<VHDL_source>();
            JsonReader inner((*found)[i], child(key, i), complaint_);
            visit_source(inner, *source);
            inner.finish();
            project.sources.push_back(std::move(source));
        }
    }

    void top_design(const char* key, Project& project) {
        const Json* found = take(key);
        if (found == nullptr || found->is_null())
            return;
        std::uint32_t index = 0;
        read_number(*found, child(key), index);
        if (index < project.sources.size())
            project.top_design = project.sources[index].get();
        else
            complain(child(key), msg_expect_source);
    }

    /// Every key must have been asked for.
    void finish() {
        if (!json_.is_object())
            return;
        for (const auto& [key, value] : json_.items())
            if (!taken_.contains(std::string_view(key)))
                complain(child(key.c_str()), msg_unknown_key);
    }

private:
    const Json* take(const char* key) {
        taken_.insert(String(key));
        if (!json_.is_object())
            return nullptr;
        const auto found = json_.find(key);
        return found == json_.end() ? nullptr : &*found;
    }

    template <typename Number>
    void read_number(const Json& json, const String& path, Number& value) {
        if constexpr (std::is_enum_v<Number>) {
            std::underlying_type_t<Number> number{};
            read_number(json, path, number);
            if (number < 0 || number > 1)
                complain(path, msg_expect_kind);
            value = Number{number};
        } else {
            using Limits = std::numeric_limits<Number>;
            const bool fits =
                json.is_number_unsigned()
                    ? json.get<std::uint64_t>() <= static_cast<std::uint64_t>(Limits::max())
                    : json.is_number_integer() && std::is_signed_v<Number> &&
                          json.get<std::int64_t>() >= static_cast<std::int64_t>(Limits::min());
            if (fits)
                value = json.get<Number>();
            else
                complain(path, msg_expect_number, static_cast<long long>(Limits::min()),
                         static_cast<long long>(Limits::max()));
        }
    }

    [[nodiscard]] String child(const char* key) const {
        return path_.empty() ? String(key) : path_ + "." + key;
    }
    [[nodiscard]] String child(const char* key, std::size_t index) const {
        return child(key) + format_text("[%lu]", static_cast<unsigned long>(index));
    }

    template <typename... Arguments>
    void complain(const String& path, Message<Arguments...>& message,
                  std::type_identity_t<Arguments>... arguments) {
        if (!complaint_.text.empty())
            return;
        complaint_.path = path.empty() ? String("the document") : path;
        complaint_.text = format_message(message, arguments...);
    }

    const Json& json_;
    String path_;
    Complaint& complaint_;
    TextSet taken_;
};

/// Parses the document; false after a message. A key that stands twice in one object is told as
/// well: one of the two would be lost.
bool parse_document(std::string_view text, const char* name, Json& json) {
    std::vector<TextSet> open_objects;
    String twice;
    const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start)
            open_objects.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            open_objects.pop_back();
        else if (event == Json::parse_event_t::key &&
                 !open_objects.back().insert(String(parsed.get_ref<const std::string&>())).second &&
                 twice.empty())
            twice = parsed.get_ref<const std::string&>();
        return true;
    };
    try {
        json = Json::parse(text, watch);
    } catch (const Json::parse_error& problem) {
        int line = 1;
        int column = 1;
        for (const char c : text.substr(0, problem.byte > 0 ? problem.byte - 1 : 0)) {
            line += c == '\n' ? 1 : 0;
            column = c == '\n' ? 1 : column + 1;
        }
        tell(msg_not_json, name, line, column);
        return false;
    } catch (const Json::exception&) {
        tell(msg_not_json, name, 1, 1);
        return false;
    }
    if (!twice.empty()) {
        tell(msg_bad_value, name, twice.c_str(), msg_key_twice.text());
        return false;
    }
    return true;
}

} // namespace

Owned<Project> project_from_json(std::string_view text, const char* name, ProjectHeader& header) {
    Json json;
    if (!parse_document(text, name, json))
        return nullptr;
    Complaint complaint;
    auto project = make_owned<Project>();
    JsonReader document(json, "", complaint);
    document.record("header", [&](auto& inner) { visit_header(inner, header); });
    document.record("project", [&](auto& inner) { visit_project(inner, *project); });
    document.finish();
    ProjectVersion version{};
    if (complaint.text.empty() && !find_version(header.version, version)) {
        complaint.path = "header.version";
        complaint.text = msg_expect_version.text();
    }
    if (complaint.text.empty())
        return project;
    tell(msg_bad_value, name, complaint.path.c_str(), complaint.text.c_str());
    return nullptr;
}

} // namespace pellux
