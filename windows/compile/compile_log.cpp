#include "windows/compile/compile_log.h"

#include "core/text/text_storage.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace pellux {
namespace {

constexpr char k_escape = '\x1b';
constexpr char k_bell = '\x07';
/// A sequence that goes on longer is no sequence.
constexpr std::size_t k_escape_bytes = 1024;

// Between two trims it grows by no more than a single piece of the output.
static_assert(4 * k_output_bytes_kept <= std::numeric_limits<std::int32_t>::max());

/// So much of a line, with words that may follow its place, is enough to know a message.
constexpr auto k_looked_at = static_cast<ByteOffset>(k_message_line_bytes) * 2;

/// How long the escape sequence at the front is; 0: its end is not there.
///
/// ECMA-48: ESC '[' parameters and intermediates, up to a byte from '@' on; ESC ']' a text up to
/// BEL or ESC '\\'; any other one is ESC, intermediates, and one byte.
std::size_t escape_length(std::string_view bytes) {
    if (bytes.size() < 2)
        return 0;
    if (bytes[1] == ']') {
        for (std::size_t i = 2; i < bytes.size(); ++i) {
            if (bytes[i] == k_bell)
                return i + 1;
            if (bytes[i] == k_escape && i + 1 < bytes.size())
                return bytes[i + 1] == '\\' ? i + 2 : i;
        }
        return 0;
    }
    const char last_before = bytes[1] == '[' ? '?' : '/';
    for (std::size_t i = bytes[1] == '[' ? 2 : 1; i < bytes.size(); ++i)
        if (bytes[i] < ' ' || bytes[i] > last_before)
            return bytes[i] < ' ' ? i : i + 1;
    return 0;
}

/// Where the next byte is that does not simply show.
std::size_t find_special(std::string_view bytes) {
    const auto* cr = static_cast<const char*>(std::memchr(bytes.data(), '\r', bytes.size()));
    const std::size_t end =
        cr == nullptr ? bytes.size() : static_cast<std::size_t>(cr - bytes.data());
    const auto* escape = static_cast<const char*>(std::memchr(bytes.data(), k_escape, end));
    return escape == nullptr ? end : static_cast<std::size_t>(escape - bytes.data());
}

} // namespace

MessageKind kind_of(const MessageLine& message) {
    return message.words.starts_with("Warning:") ? MessageKind::warning
           : message.words.starts_with("Note:")  ? MessageKind::note
                                                 : MessageKind::error;
}

void CompileLog::clear() {
    erase_bytes(document_, 0, text_size(document_));
    document_.encoding = TextEncoding::utf_8;
    messages_.clear();
    forgotten_ = 0;
    counts_ = {};
    hidden_.clear();
    hidden_bytes_.clear();
    escape_.clear();
    ends_with_cr_ = false;
    line_ = 0;
    line_start_ = 0;
    has_noted_last_ = false;
}

void CompileLog::append(std::string_view bytes, const Events& events) {
    if (std::exchange(has_noted_last_, false)) {
        --counts_[static_cast<std::size_t>(messages_.back().kind)];
        messages_.pop_back();
    }
    while (!bytes.empty()) {
        if (!escape_.empty() || bytes.front() == k_escape) {
            bytes.remove_prefix(take_escape(bytes));
            continue;
        }
        if (bytes.front() == '\r') {
            hide("\r");
            ends_with_cr_ = true;
            bytes.remove_prefix(1);
            continue;
        }
        if (std::exchange(ends_with_cr_, false) && bytes.front() != '\n')
            overwrite_line();
        const std::string_view run = bytes.substr(0, find_special(bytes));
        for (std::string_view rest = run; !rest.empty();) {
            const std::string_view segment = rest.substr(0, rest.find('\n'));
            if (const std::string_view name = compiling_file(segment); !name.empty())
                events.begin_file(events.context, name);
            rest.remove_prefix(std::min(segment.size() + 1, rest.size()));
        }
        show(run, events);
        bytes.remove_prefix(run.size());
    }
    note_last_line();
    trim();
}

std::string_view CompileLog::bytes_of(const Hidden& hidden) const {
    const std::int64_t start = &hidden == hidden_.data() ? 0 : (&hidden - 1)->end;
    return view(hidden_bytes_)
        .substr(static_cast<std::size_t>(start), static_cast<std::size_t>(hidden.end - start));
}

void CompileLog::hide(std::string_view bytes) {
    const ByteOffset at = text_size(document_);
    if (hidden_.empty() || hidden_.back().at != at)
        hidden_.push_back({.at = at});
    hidden_bytes_ += bytes;
    hidden_.back().end = std::ssize(hidden_bytes_);
}

/// What stood in the last line is hidden, among what was hidden in it. What was hidden before it is
/// not copied again: a line may be overwritten very often.
void CompileLog::overwrite_line() {
    auto within = std::ranges::lower_bound(hidden_, line_start_, {}, &Hidden::at);
    if (within != hidden_.end() && within->at == line_start_)
        ++within;
    const std::int64_t kept = within == hidden_.begin() ? 0 : (within - 1)->end;
    String received;
    ByteOffset at = line_start_;
    for (auto hidden = within; hidden != hidden_.end(); ++hidden) {
        received += copy_text(document_, at, hidden->at - at);
        received += bytes_of(*hidden);
        at = hidden->at;
    }
    received += copy_text(document_, at, text_size(document_) - at);
    hidden_.erase(within, hidden_.end());
    hidden_bytes_.resize(static_cast<std::size_t>(kept));
    erase_bytes(document_, line_start_, text_size(document_) - line_start_);
    hide(view(received));
}

/// Answers how many of the bytes belong to the sequence that has begun, or begins with them.
std::size_t CompileLog::take_escape(std::string_view bytes) {
    const std::size_t begun = escape_.size();
    escape_ += bytes.substr(0, k_escape_bytes);
    const std::size_t length = escape_length(view(escape_));
    if (length == 0 && escape_.size() < k_escape_bytes)
        return bytes.size();
    // What is none shows without the byte that would begin it.
    const std::size_t hidden = std::max(length == 0 ? 1 : length, std::max(begun, std::size_t{1}));
    hide(view(escape_).substr(0, hidden));
    escape_.clear();
    return hidden - begun;
}

/// Without CR and ESC.
void CompileLog::show(std::string_view run, const Events& events) {
    const ByteOffset shown = text_size(document_);
    insert_bytes(document_, shown, run);
    for (std::size_t start = 0; start < run.size();) {
        const std::size_t end = run.find('\n', start);
        if (end == std::string_view::npos)
            return;
        const ByteOffset begun = shown + static_cast<ByteOffset>(start) - line_start_;
        String joined; // of what was there and what came now
        if (begun > 0)
            joined = copy_text(document_, line_start_,
                               std::min(begun + static_cast<ByteOffset>(end - start), k_looked_at));
        if (const auto message =
                note_line(begun > 0 ? view(joined) : run.substr(start, end - start)))
            events.message(events.context, number_of(messages_.back()), *message);
        ++line_;
        start = end + 1;
        line_start_ = shown + static_cast<ByteOffset>(start);
    }
}

std::optional<MessageLine> CompileLog::note_line(std::string_view line) {
    const auto message = parse_message_line(line);
    if (message) {
        messages_.push_back({static_cast<std::int32_t>(line_), kind_of(*message)});
        ++counts_[static_cast<std::size_t>(messages_.back().kind)];
    }
    return message;
}

void CompileLog::note_last_line() {
    const ByteOffset length = text_size(document_) - line_start_;
    has_noted_last_ =
        length > 0 &&
        note_line(view(copy_text(document_, line_start_, std::min(length, k_looked_at))));
}

/// A text that is too large loses its first lines, or the start of the last one where that alone is
/// too large; and so does what does not show of it.
void CompileLog::trim() {
    if (text_size(document_) > 2 * kept_) {
        const ByteOffset cut = text_size(document_) - kept_;
        const std::int64_t line = line_of(point_at(document_, cut));
        forget(line == line_ ? cut : line_start(document_, line), line);
    }
    if (std::ssize(hidden_bytes_) > 2 * kept_)
        forget_hidden(std::ssize(hidden_bytes_) - kept_);
}

void CompileLog::forget(ByteOffset bytes, std::int64_t lines) {
    erase_bytes(document_, 0, bytes);
    forgotten_ += static_cast<std::int64_t>(
        std::erase_if(messages_, [lines](const LogMessage& each) { return each.line < lines; }));
    for (LogMessage& each : messages_)
        each.line -= static_cast<std::int32_t>(lines);
    const auto kept = std::ranges::lower_bound(hidden_, bytes, {}, &Hidden::at);
    forget_hidden(kept == hidden_.begin() ? 0 : (kept - 1)->end);
    for (Hidden& each : hidden_)
        each.at -= bytes;
    line_ -= lines;
    line_start_ = std::max(line_start_ - bytes, ByteOffset{0});
}

/// So many of the bytes.
void CompileLog::forget_hidden(std::int64_t bytes) {
    hidden_bytes_.erase(0, static_cast<std::size_t>(bytes));
    for (Hidden& each : hidden_)
        each.end -= bytes;
    std::erase_if(hidden_, [](const Hidden& each) { return each.end <= 0; });
}

const LogMessage* CompileLog::next_message(std::int64_t line) const {
    const auto found = std::ranges::upper_bound(messages_, line, {}, &LogMessage::line);
    return found == messages_.end() ? nullptr : &*found;
}

const LogMessage* CompileLog::previous_message(std::int64_t line) const {
    const auto found = std::ranges::lower_bound(messages_, line, {}, &LogMessage::line);
    return found == messages_.begin() ? nullptr : &*(found - 1);
}

const LogMessage* CompileLog::message_at(std::int64_t line) const {
    const LogMessage* found = next_message(line - 1);
    return found != nullptr && found->line == line ? found : nullptr;
}

bool CompileLog::give_received(Give give, void* context) const {
    ByteOffset at = 0;
    const auto give_shown = [&](ByteOffset end) {
        while (at < end) {
            const std::string_view piece =
                text_piece(point_at(document_, at)).substr(0, static_cast<std::size_t>(end - at));
            if (!give(context, piece))
                return false;
            at += static_cast<ByteOffset>(piece.size());
        }
        return true;
    };
    for (const Hidden& hidden : hidden_)
        if (!give_shown(hidden.at) || !give(context, bytes_of(hidden)))
            return false;
    return give_shown(text_size(document_)) && (escape_.empty() || give(context, view(escape_)));
}

} // namespace pellux
