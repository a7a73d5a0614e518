#include "core/launch/command_line.h"

#include "core/diagnostics/message.h"
#include "core/launch/response_file.h"

namespace pellux {

String response_word(std::string_view word) {
    if (!word.empty() && word.find_first_of(" \t\"\r\n") == std::string_view::npos)
        return String(word);
    String quoted("\"");
    for (const char c : word) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

CommandLine compose_command_line(const char* program, std::uint64_t handle,
                                 const char* const* argv) {
    CommandLine line;
    line.words.emplace_back(program);
    if (handle != 0)
        line.words.push_back(format_text("-%%bpipe%lu", static_cast<unsigned long>(handle)));
    const std::size_t kept = line.words.size();
    for (const char* const* argument = argv; *argument != nullptr; ++argument)
        if (argument != argv)
            line.words.emplace_back(*argument);
    // Each word with the blank or NUL behind it.
    std::size_t length = 0;
    for (const String& word : line.words)
        length += word.size() + 1;
    line.has_response = length > k_command_line_max;
    if (!line.has_response)
        return line;
    for (std::size_t i = kept; i < line.words.size(); ++i) {
        if (i > kept)
            line.response += ' ';
        line.response += response_word(view(line.words[i]));
    }
    line.response += '\n';
    line.words.resize(kept);
    line.words.push_back(String("@") + k_response_file);
    return line;
}

} // namespace pellux
