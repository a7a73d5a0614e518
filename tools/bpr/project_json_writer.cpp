#include "core/common/hex.h"
#include "core/common/utf8.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/message.h"
#include "tools/bpr/project_fields.h"
#include "tools/bpr/project_json.h"

#include <charconv>
#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_indentation = 2; ///< blanks a level

/// Hexadecimal digits, two a byte.
String to_hex(std::span<const std::byte> bytes, std::string_view between) {
    String text;
    for (const std::byte byte : bytes) {
        text += text.empty() ? "" : between;
        append_hex(text, std::to_integer<unsigned char>(byte));
    }
    return text;
}

/// Writes what it visits behind what is there already: no document is held but the text itself.
class JsonWriter {
public:
    String json;

    void text(std::string_view key, const NullableText& value) {
        put_key(key);
        if (!value.present()) {
            json += "null";
        } else if (is_utf8(value.view())) {
            put_text(value.view());
        } else {
            open('{');
            put_key("bytes");
            put_text(view(to_hex(std::as_bytes(std::span(value.view())), " ")));
            close('}');
        }
    }
    template <typename Number>
    void number(std::string_view key, Number value) {
        put_key(key);
        put_number(static_cast<std::int64_t>(value));
    }
    void words(std::string_view key, const std::array<std::uint32_t, 8>& value) {
        put_key(key);
        open('[');
        for (const std::uint32_t word : value) {
            next_line();
            put_number(word);
        }
        close(']');
    }
    void bytes(std::string_view key, const Vector<std::byte>& value) {
        put_key(key);
        put_text(view(to_hex(value, "")));
    }
    template <typename Record>
    void record(std::string_view key, const Record& record) {
        put_key(key);
        put_record(record);
    }
    void sources(std::string_view key, const Project& project) {
        put_key(key);
        open('[');
        for (const Owned<VHDL_source>& source : project.sources) {
            next_line();
            put_record(std::as_const(*source));
        }
        close(']');
    }
    void top_design(std::string_view key, const Project& project) {
        put_key(key);
        std::int64_t index = 0;
        for (const Owned<VHDL_source>& source : project.sources) {
            if (source.get() == project.top_design) {
                put_number(index);
                return;
            }
            ++index;
        }
        json += "null";
    }

    void open(char bracket) {
        json += bracket;
        ++depth_;
        is_first_ = true;
    }
    void close(char bracket) {
        --depth_;
        if (!is_first_)
            start_line();
        is_first_ = false;
        json += bracket;
    }

private:
    void start_line() {
        json += '\n';
        json.append(depth_ * k_indentation, ' ');
    }
    void next_line() {
        if (!std::exchange(is_first_, false))
            json += ',';
        start_line();
    }
    void put_key(std::string_view key) {
        next_line();
        put_text(key);
        json += ": ";
    }
    void put_number(std::int64_t value) {
        std::array<char, 20> digits;
        json.append(digits.data(), std::to_chars(digits.begin(), digits.end(), value).ptr);
    }
    void put_text(std::string_view text) {
        constexpr std::string_view k_escaped = "\"\\\b\f\n\r\t";
        constexpr std::string_view k_letters = "\"\\bfnrt";
        json += '"';
        while (!text.empty()) {
            const std::size_t at = k_escaped.find(text.front());
            if (at == std::string_view::npos) {
                text.remove_prefix(append_visible(json, text));
            } else {
                json += '\\';
                json += k_letters[at];
                text.remove_prefix(1);
            }
        }
        json += '"';
    }
    template <typename Record>
    void put_record(const Record& record) {
        open('{');
        visit_fields(*this, record);
        close('}');
    }

    std::size_t depth_ = 0;
    bool is_first_ = true; ///< nothing stands in the innermost bracket yet
};

} // namespace

String project_to_json(const Project& project, const ProjectHeader& header) {
    JsonWriter document;
    document.open('{');
    document.record("header", header);
    document.record("project", project);
    document.close('}');
    return document.json + "\n";
}

} // namespace pellux
