#include "fuzz/require.h"
#include "tools/bpr/source_lists.h"

#include <cstdint>

namespace {

using namespace pellux;

/// As a list has it, whatever is in it.
String quoted(const String& text) {
    String result = "\"";
    for (const char c : text) {
        if (c == '"')
            result += "\"'\"'\"";
        else
            result += c;
    }
    return result + "\"";
}

} // namespace

/// Takes the input apart as a list of files. What is found is found again when it is written anew.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Vector<ListWord> words;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (!parse_source_list(input, words).empty()) {
        require(!words.empty());
        return 0;
    }
    String text;
    for (const ListWord& word : words) {
        const char* const before = word.kind == ListWordKind::library ? "-work "
                                   : word.kind == ListWordKind::list  ? "-F "
                                                                      : "";
        text += before;
        text += quoted(word.text);
        text += '\n';
    }
    Vector<ListWord> again;
    require(parse_source_list(view(text), again).empty() && again.size() == words.size());
    int line = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        require(again[i].kind == words[i].kind && again[i].text == words[i].text);
        require(again[i].line == ++line && (i == 0 || words[i].line >= words[i - 1].line));
    }
    return 0;
}
