#include "tools/driver/compile/fitting.h"

#include "core/common/blanks.h"
#include "core/os/ascii.h"
#include "core/project/directives.h"
#include "tools/driver/libraries/library_place.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_device = "-d";
constexpr std::string_view k_package = "-p";
constexpr std::string_view k_group = "-f";

/// The letter of a "-f" switch, by which one says the same as another or its contrary; 0 for
/// other switches. To keep and to choose the polarity are one question.
char question_of(std::string_view word) {
    if (!word.starts_with(k_group) || word.size() == k_group.size())
        return 0;
    const char letter = ascii_lower(word[k_group.size()]);
    return letter == 'k' ? 'p' : letter;
}

bool answers(const Vector<String>& switches, std::string_view word) {
    return std::any_of(switches.begin(), switches.end(), [=](const String& known) {
        return question_of(view(known)) == question_of(word);
    });
}

} // namespace

Fitting find_fitting(const Options& options) {
    Fitting fitting;
    for (const String& word : options.fitting) {
        if (word.starts_with(k_device))
            fitting.device = word.substr(k_device.size());
        else if (word.starts_with(k_package))
            fitting.package = word.substr(k_package.size());
        else
            fitting.switches.push_back(word);
    }
    String said;
    String device;
    String package;
    if (options.top.empty() || !scanDirectives(view(options.top), said, device, package))
        return fitting;
    if (fitting.device.empty() && !device.empty()) {
        fitting.device = device;
        fitting.device_by_directive = true;
    }
    if (fitting.package.empty() && !package.empty()) {
        fitting.package = package;
        fitting.package_by_directive = true;
    }
    std::string_view rest = view(said);
    for (std::string_view word; next_word(rest, word);) {
        if (!answers(fitting.switches, word) && !answers(fitting.switches_by_directive, word))
            fitting.switches_by_directive.emplace_back(word);
    }
    return fitting;
}

} // namespace pellux
