#include "windows/compile/last_compiles.h"

#include "windows/compile/messages.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_records_kept = 10;

Vector<CompileRecord> records; ///< the latest first

struct CountWords {
    Message<>& one;
    Message<int>& many;
};

} // namespace

String counts_text(const MessageCounts& counts) {
    const CountWords words[] = {{msg_one_error, msg_many_errors},
                                {msg_one_warning, msg_many_warnings},
                                {msg_one_note, msg_many_notes}};
    String text;
    for (std::size_t kind = 0; kind < counts.size(); ++kind) {
        if (counts[kind] == 0)
            continue;
        if (!text.empty())
            text += ", ";
        const auto count =
            static_cast<int>(std::min<std::int64_t>(counts[kind], std::numeric_limits<int>::max()));
        text +=
            count == 1 ? format_message(words[kind].one) : format_message(words[kind].many, count);
    }
    return text;
}

String verdict_text(RunKind kind, bool is_successful) {
    if (kind == RunKind::simulation)
        return format_message(is_successful ? msg_simulation_succeeded : msg_simulation_failed);
    return format_message(is_successful ? msg_compile_succeeded : msg_compile_failed);
}

void note_compile(CompileRecord record) {
    records.insert(records.begin(), std::move(record));
    if (records.size() > k_records_kept)
        records.pop_back();
}

String last_compiles_text() {
    constexpr std::int64_t k_tenth_ms = 100;
    constexpr std::int64_t k_tenths = 10;
    if (records.empty())
        return format_message(msg_no_compiles);
    String text;
    for (const CompileRecord& each : records) {
        const String verdict = verdict_text(each.kind, each.is_successful);
        const String counts = counts_text(each.counts);
        const std::int64_t tenths = each.duration_ms / k_tenth_ms;
        text +=
            format_message(msg_last_compile, each.time.c_str(), static_cast<int>(tenths / k_tenths),
                           static_cast<int>(tenths % k_tenths), verdict.c_str(), counts.c_str(),
                           each.title.c_str());
        text += '\n';
    }
    return text;
}

} // namespace pellux
