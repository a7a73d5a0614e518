#include "tools/driver/ghdl/ghdl_words.h"

#include <array>

namespace pellux {
namespace {

struct StandardRow {
    std::string_view number;
    VhdlStandard standard;
};

constexpr std::array k_standards{
    StandardRow{"87", VhdlStandard::vhdl_87},
    StandardRow{"93", VhdlStandard::vhdl_93},
    StandardRow{"2", VhdlStandard::vhdl_2002},
    StandardRow{"8", VhdlStandard::vhdl_2008},
};

struct StandardWords {
    const char* option;
    const char* library_suffix;
    const char* directory;
};

StandardWords words_of(VhdlStandard standard) {
    switch (standard) {
    case VhdlStandard::vhdl_87:
        return {"--std=87", "-obj87.cf", "v87"};
    case VhdlStandard::vhdl_93:
        return {"--std=93", "-obj93.cf", "v93"};
    case VhdlStandard::vhdl_2002:
        return {"--std=02", "-obj93.cf", "v93"};
    case VhdlStandard::vhdl_2008:
        break;
    }
    return {"--std=08", "-obj08.cf", "v08"};
}

/// The words that every call on a library shares, up to what it is about.
Vector<String> common_words(const GhdlCalls& calls, const char* command, std::string_view library) {
    Vector<String> words;
    words.push_back(calls.program);
    words.emplace_back(command);
    words.emplace_back(words_of(calls.standard).option);
    add_rule_options(calls.rules, words);
    words.push_back("--work=" + String(library));
    words.push_back("--workdir=" + calls.directory);
    words.push_back("-P" + calls.directory);
    for (const String& directory : calls.search)
        words.push_back("-P" + directory);
    words.emplace_back("-fno-caret-diagnostics");
    words.emplace_back("-fno-color-diagnostics");
    // GHDL's own limit would hide errors from ours.
    words.emplace_back("-fmax-errors=100000");
    return words;
}

} // namespace

bool find_standard(std::string_view number, VhdlStandard& standard) {
    for (const StandardRow& known : k_standards) {
        if (known.number == number) {
            standard = known.standard;
            return true;
        }
    }
    return false;
}

String library_file_name(std::string_view library, VhdlStandard standard) {
    return String(library) + words_of(standard).library_suffix;
}

const char* standard_directory(VhdlStandard standard) {
    return words_of(standard).directory;
}

Vector<String> analysis_words(const GhdlCalls& calls, std::string_view library,
                              std::span<const String> files) {
    Vector<String> words = common_words(calls, "-a", library);
    words.insert(words.end(), files.begin(), files.end());
    return words;
}

Vector<String> elaboration_words(const GhdlCalls& calls, std::string_view library,
                                 std::string_view unit) {
    Vector<String> words = common_words(calls, "-e", library);
    words.emplace_back(unit);
    return words;
}

String ghdl_file_name(std::string_view file) {
    String name(file);
    if (name.starts_with('-') || name.starts_with('@'))
        name.insert(0, "./");
    return name;
}

} // namespace pellux
