#include "windows/editor/keyword_table.h"

#include "core/common/hash_table.h"
#include "core/common/text_file.h"
#include "core/os/ascii.h"
#include "core/os/environment.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr std::uint32_t k_buckets = 317;
constexpr int k_words_min = 11;
/// What is larger is no list of words.
constexpr std::size_t k_file_max = 256 * 1024;
constexpr const char* k_file_name = "vhdl.tok";

/// The table's own function uses few of a number of buckets that is no power of two.
std::uint32_t bucket_of(const char* key, std::uint32_t size) {
    std::uint32_t sum = 0;
    for (; *key != '\0'; ++key)
        sum = sum * 31 + static_cast<unsigned char>(*key);
    return sum % size;
}

struct KeywordTable {
    HashTable words; ///< no buckets: not loaded
    std::size_t longest = 0;
    bool was_lacking = false;
    bool was_warned = false;
};

KeywordTable& table() {
    static KeywordTable the_table;
    return the_table;
}

/// A word in lower case, as a key of the table.
struct Keyword {
    std::array<char, k_keyword_bytes> text;

    explicit Keyword(std::string_view word) {
        *std::transform(word.begin(), word.end(), text.begin(), ascii_lower) = '\0';
    }
};

bool read_keywords(String& text) {
    PathBuffer path;
    const char* const directory = installation_directory();
    const bool is_named =
        directory == nullptr ? path.assign(k_file_name)
                             : path.assign(directory) && path.join("bin") && path.join(k_file_name);
    SystemError error{};
    return is_named &&
           read_text_file(path.view(), k_file_max, text, error) == TextFileStatus::read &&
           text.find('\0') == String::npos;
}

bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Takes the next word off a text; empty at its end.
std::string_view take_word(std::string_view& text) {
    const auto* const start = std::find_if_not(text.begin(), text.end(), is_space);
    const auto* const end = std::find_if(start, text.end(), is_space);
    text = {end, text.end()};
    return {start, end};
}

} // namespace

bool load_keywords() {
    KeywordTable& keywords = table();
    if (keywords.words.buckets != nullptr)
        return true;
    String text;
    int count = 0;
    if (read_keywords(text)) {
        keywords.words = create(k_buckets, bucket_of);
        keywords.words.valuesBorrowed = 1;
        std::string_view rest = view(text);
        for (std::string_view word = take_word(rest); !word.empty(); word = take_word(rest)) {
            ++count;
            // Left out, as half a word would be another one.
            if (word.size() >= k_keyword_bytes)
                continue;
            insert(keywords.words, Keyword(word).text.data(), &keywords);
            keywords.longest = std::max(keywords.longest, word.size());
        }
    }
    if (count < k_words_min) {
        destroy(keywords.words, 1);
        keywords.words = {};
    }
    keywords.was_lacking = keywords.words.buckets == nullptr;
    return !keywords.was_lacking;
}

bool must_warn_of_keywords() {
    KeywordTable& keywords = table();
    if (!keywords.was_lacking || keywords.was_warned)
        return false;
    keywords.was_warned = true;
    return true;
}

bool is_keyword(std::string_view word) {
    const KeywordTable& keywords = table();
    if (keywords.words.buckets == nullptr || word.size() > keywords.longest)
        return false;
    return find(keywords.words, Keyword(word).text.data()) != nullptr;
}

void forget_keywords() {
    destroy(table().words, 1);
    table() = {};
}

} // namespace pellux
