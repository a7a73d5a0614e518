#include "tools/bpr/project_fields.h"
#include "tools/bpr/project_json.h"

#include <nlohmann/json.hpp>

#include <string>

namespace pellux {
namespace {

using Json = nlohmann::ordered_json;

/// A text's bytes become the code points of the same numbers.
std::string to_utf8(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

struct JsonWriter {
    Json json = Json::object();

    void text(const char* key, const NullableText& value) {
        if (value.present())
            json[key] = to_utf8(value.view());
        else
            json[key] = nullptr;
    }
    template <typename Number>
    void number(const char* key, Number value) {
        json[key] = static_cast<std::int64_t>(value);
    }
    void words(const char* key, const std::array<std::uint32_t, 8>& value) { json[key] = value; }
    void bytes(const char* key, const Vector<std::byte>& value) {
        constexpr std::string_view k_digits = "0123456789abcdef";
        std::string text;
        for (const std::byte byte : value) {
            text += k_digits[std::to_integer<std::size_t>(byte >> 4)];
            text += k_digits[std::to_integer<std::size_t>(byte & std::byte{15})];
        }
        json[key] = text;
    }
    template <typename Record>
    void record(const char* key, const Record& record) {
        JsonWriter inner;
        visit_fields(inner, record);
        json[key] = std::move(inner.json);
    }
    void sources(const char* key, const Project& project) {
        Json list = Json::array();
        for (const Owned<VHDL_source>& source : project.sources) {
            JsonWriter inner;
            visit_fields(inner, std::as_const(*source));
            list.push_back(std::move(inner.json));
        }
        json[key] = std::move(list);
    }
    void top_design(const char* key, const Project& project) {
        json[key] = nullptr;
        for (std::size_t i = 0; i < project.sources.size(); ++i)
            if (project.sources[i].get() == project.top_design)
                json[key] = i;
    }
};

} // namespace

String project_to_json(const Project& project, const ProjectHeader& header) {
    JsonWriter document;
    document.record("header", header);
    document.record("project", project);
    const std::string text = document.json.dump(2);
    return String(text) + "\n";
}

} // namespace pellux
