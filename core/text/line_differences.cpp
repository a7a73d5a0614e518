#include "core/text/line_differences.h"

#include <algorithm>
#include <charconv>

namespace pellux {
namespace {

using Sums = Vector<std::uint64_t>;

/// A sum of each line, FNV-1a of 64 bits.
Sums sums_of(const TextDocument& document) {
    constexpr std::uint64_t k_start = 14695981039346656037U;
    constexpr std::uint64_t k_prime = 1099511628211U;
    Sums sums;
    std::uint64_t sum = k_start;
    for (TextPoint at = point_at(document, 0);;) {
        const std::string_view piece = text_piece(at);
        if (piece.empty())
            break;
        for (const char c : piece) {
            sum = (sum ^ static_cast<unsigned char>(c)) * k_prime;
            if (c == '\n') {
                sums.push_back(sum);
                sum = k_start;
            }
        }
        at = behind(at, piece.size());
    }
    sums.push_back(sum);
    return sums;
}

/// Lines [`first`, `end`) of one text against [`other_first`, `other_end`) of the other.
struct Span {
    std::int64_t first;
    std::int64_t end;
    std::int64_t other_first;
    std::int64_t other_end;
};

/// Myers, "An O(ND) Difference Algorithm and Its Variations", the greedy one: on diagonal k, where
/// a line's number in the first text less that in the other is k, how far does one come with d
/// lines that are not in both?
class GreedySearch {
public:
    GreedySearch(const Sums& one, const Sums& other, const Span& span)
        : one_(one), other_(other), span_(span) {}

    /// False when it would take too long.
    bool run();
    /// The changes of it, appended.
    void give(Vector<LineChange>& changes) const;

private:
    static constexpr std::int64_t k_most_differences = 2000;
    static constexpr std::int64_t k_most_steps = 50'000'000;

    [[nodiscard]] std::int64_t lines() const { return span_.end - span_.first; }
    [[nodiscard]] std::int64_t other_lines() const { return span_.other_end - span_.other_first; }
    /// Does the best way to a diagonal come from the one above, by a line of the other text?
    [[nodiscard]] static bool comes_from_above(const Vector<std::int64_t>& reached, std::int64_t d,
                                               std::int64_t k) {
        return k == -d || (k != d && at(reached, k - 1) < at(reached, k + 1));
    }
    [[nodiscard]] static std::int64_t at(const Vector<std::int64_t>& reached, std::int64_t k) {
        return reached[static_cast<std::size_t>(k + std::ssize(reached) / 2)];
    }

    const Sums& one_;
    const Sums& other_;
    Span span_;
    /// For each d from 0 what was reached on the diagonals from -d - 1 to d + 1, before its own
    /// step.
    Vector<Vector<std::int64_t>> before_;
};

bool GreedySearch::run() {
    std::int64_t steps = 0;
    Vector<std::int64_t> reached(3, 0);
    for (std::int64_t d = 0; d <= k_most_differences; ++d) {
        before_.push_back(reached);
        Vector<std::int64_t> next(reached.size() + 2, 0);
        for (std::int64_t k = -d; k <= d; k += 2) {
            std::int64_t x =
                comes_from_above(reached, d, k) ? at(reached, k + 1) : at(reached, k - 1) + 1;
            if (d == 0)
                x = 0;
            for (; x < lines() && x - k < other_lines() &&
                   one_[static_cast<std::size_t>(span_.first + x)] ==
                       other_[static_cast<std::size_t>(span_.other_first + x - k)];
                 ++steps)
                ++x;
            next[static_cast<std::size_t>(k + std::ssize(next) / 2)] = x;
            if (x >= lines() && x - k >= other_lines())
                return true;
        }
        if (steps > k_most_steps)
            return false;
        reached = std::move(next);
    }
    return false;
}

void GreedySearch::give(Vector<LineChange>& changes) const {
    const auto from = std::ssize(changes);
    std::int64_t x = lines();
    std::int64_t y = other_lines();
    for (std::int64_t d = std::ssize(before_) - 1; d > 0; --d) {
        const Vector<std::int64_t>& reached = before_[static_cast<std::size_t>(d)];
        const std::int64_t k = x - y;
        const bool is_above = comes_from_above(reached, d, k);
        const std::int64_t from_k = is_above ? k + 1 : k - 1;
        x = at(reached, from_k);
        y = x - from_k;
        LineChange step{span_.first + x, is_above ? 0 : 1, span_.other_first + y, is_above ? 1 : 0};
        LineChange* last = std::ssize(changes) > from ? &changes.back() : nullptr;
        if (last != nullptr && last->first == step.first + step.count &&
            last->other_first == step.other_first + step.other_count) {
            last->first = step.first;
            last->other_first = step.other_first;
            last->count += step.count;
            last->other_count += step.other_count;
        } else {
            changes.push_back(step);
        }
    }
    std::reverse(changes.begin() + from, changes.end());
}

void append_number(String& text, std::int64_t number) {
    char digits[24];
    text.append(digits, static_cast<std::size_t>(
                            std::to_chars(digits, digits + sizeof digits, number).ptr - digits));
}

/// Lines [`first`, `end`) of a text, each behind a mark.
void append_lines(String& text, const TextDocument& document, std::int64_t first, std::int64_t end,
                  char mark, std::size_t limit) {
    constexpr ByteOffset k_line_bytes = 2000;
    for (; first < end && text.size() < limit; ++first) {
        const ByteOffset start = line_start(document, first);
        const bool is_last = first + 1 == line_count(document);
        const ByteOffset bytes =
            (is_last ? text_size(document) : line_start(document, first + 1) - 1) - start;
        text += mark;
        text += ' ';
        text += copy_text(document, start, std::min(bytes, k_line_bytes));
        text += '\n';
    }
}

} // namespace

Vector<LineChange> compare_lines(const TextDocument& one, const TextDocument& other) {
    const Sums sums = sums_of(one);
    const Sums others = sums_of(other);
    Span span{0, std::ssize(sums), 0, std::ssize(others)};
    const auto front = std::ranges::mismatch(sums, others);
    span.first = span.other_first = front.in1 - sums.begin();
    while (span.end > span.first && span.other_end > span.other_first &&
           sums[static_cast<std::size_t>(span.end - 1)] ==
               others[static_cast<std::size_t>(span.other_end - 1)]) {
        --span.end;
        --span.other_end;
    }
    Vector<LineChange> changes;
    if (span.first == span.end && span.other_first == span.other_end)
        return changes;
    GreedySearch search(sums, others, span);
    if (search.run())
        search.give(changes);
    else
        changes.push_back({span.first, span.end - span.first, span.other_first,
                           span.other_end - span.other_first});
    return changes;
}

String differences_text(const TextDocument& one, const TextDocument& other, std::size_t limit) {
    constexpr std::int64_t k_around = 3;
    const Vector<LineChange> changes = compare_lines(one, other);
    String text;
    std::int64_t shown_end = 0; ///< of the lines of `one`
    for (std::size_t i = 0; i < changes.size() && text.size() < limit; ++i) {
        const LineChange& change = changes[i];
        const std::int64_t begin = std::max(shown_end, change.first - k_around);
        if (begin > shown_end || i == 0) {
            text += i == 0 ? "@ " : "\n@ ";
            append_number(text, begin + 1);
            text += '\n';
        }
        append_lines(text, one, begin, change.first, ' ', limit);
        append_lines(text, one, change.first, change.first + change.count, '-', limit);
        append_lines(text, other, change.other_first, change.other_first + change.other_count, '+',
                     limit);
        shown_end = change.first + change.count;
        const std::int64_t next = i + 1 < changes.size() ? changes[i + 1].first : line_count(one);
        const std::int64_t end = std::min(shown_end + k_around, next);
        append_lines(text, one, shown_end, end, ' ', limit);
        shown_end = end;
    }
    if (text.size() >= limit)
        text += "...\n";
    return text;
}

} // namespace pellux
