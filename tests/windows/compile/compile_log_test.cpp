#include "windows/compile/compile_log.h"

#include "tests/support/rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

std::string received(const CompileLog& log) {
    std::string all;
    const auto give = [](void* to, std::string_view bytes) {
        *static_cast<std::string*>(to) += bytes;
        return true;
    };
    EXPECT_TRUE(log.give_received(give, &all));
    return all;
}

constexpr const char* k_sequences[] = {"\x1b[1;31m", "\x1b]0;a\x07", "\x1b]b\x1b\\", "\x1b(B"};

/// What shows of a whole text: without escape sequences, and of each line what its last CR left.
std::string shown_of(std::string text) {
    for (const std::string sequence : k_sequences)
        for (std::size_t at = 0; (at = text.find(sequence, at)) != std::string::npos;)
            text.erase(at, sequence.size());
    std::string shown;
    std::string line;
    bool ends_with_cr = false;
    for (const char c : text) {
        if (c == '\r') {
            ends_with_cr = true;
            continue;
        }
        if (std::exchange(ends_with_cr, false) && c != '\n')
            line.clear();
        line += c;
        if (c == '\n') {
            shown += line;
            line.clear();
        }
    }
    return shown + line;
}

/// However it is cut.
TEST(CompileLog, ShowsTheSameAndGivesBackWhatItGot) {
    constexpr const char* k_parts[] = {"a",
                                       "\n",
                                       "\r",
                                       "\r\n",
                                       "\xC3\xA9",
                                       "a.vhd (line 12, col 5): ",
                                       "Warning: ",
                                       "\nb.vhd (line 1, col 0):x\n",
                                       "\nmy a.vhd (line 1, col 1): ",
                                       "\nCompiling 'c.vhd'\n"};
    const test::Rounds rounds(300);
    std::mt19937_64 random(rounds.seed);
    for (int round = 0; round < rounds.count; ++round) {
        TextDocument document(round % 2 == 0 ? 16 : k_block_bytes);
        const bool is_cut = round % 4 == 3;
        CompileLog log(document, is_cut ? 150 : k_output_bytes_kept);
        log.clear();
        std::string all;
        for (int i = 0; i < 40; ++i)
            all += random() % 3 == 0 ? k_sequences[random() % std::size(k_sequences)]
                                     : k_parts[random() % std::size(k_parts)];
        std::int64_t told = 0;
        const CompileLog::Events events{
            .begin_file =
                [](void*, std::string_view name) {
                    EXPECT_TRUE(std::string_view("c.vhd").starts_with(name)) << name;
                },
            .message =
                [](void* count, std::int64_t number, const MessageLine&) {
                    EXPECT_EQ(number, (*static_cast<std::int64_t*>(count))++);
                },
            .context = &told};
        for (std::size_t at = 0; at < all.size();) {
            const std::size_t size = 1 + random() % (round % 3 == 0 ? 4 : 200);
            log.append(std::string_view(all).substr(at, size), events);
            at += size;
        }
        const std::string shown = shown_of(all);
        const std::string held = copy_text(document, 0, text_size(document)).c_str();
        if (is_cut) {
            ASSERT_TRUE(held.size() <= 300 && shown.ends_with(held)) << round;
            EXPECT_LE(received(log).size(), 600);
            // The first line may have lost its start.
            for (const LogMessage* at = log.next_message(0); at != nullptr;
                 at = log.next_message(at->line)) {
                const ByteOffset start = line_start(document, at->line);
                const String line =
                    copy_text(document, start, line_end(document, at->line) - start);
                EXPECT_TRUE(parse_message_line(view(line))) << round;
            }
            continue;
        }
        ASSERT_EQ(held, shown) << round;
        ASSERT_EQ(received(log), all) << round;
        std::vector<std::int64_t> lines;
        std::size_t start = 0;
        for (std::int64_t line = 0; start <= shown.size(); ++line) {
            const std::size_t end = std::min(shown.find('\n', start), shown.size());
            if (parse_message_line(std::string_view(shown).substr(start, end - start)))
                lines.push_back(line);
            start = end + 1;
        }
        std::vector<std::int64_t> found;
        for (const LogMessage* at = log.next_message(-1); at != nullptr;
             at = log.next_message(at->line)) {
            ASSERT_EQ(log.number_of(*at), static_cast<std::int64_t>(found.size()));
            found.push_back(at->line);
        }
        ASSERT_EQ(found, lines) << round;
        ASSERT_EQ(std::accumulate(log.counts().begin(), log.counts().end(), std::int64_t{0}),
                  static_cast<std::int64_t>(lines.size()));
        ASSERT_LE(static_cast<std::int64_t>(lines.size()) - told, 1)
            << "the last line is not whole";
        const auto line = static_cast<std::int64_t>(random() % 20);
        const auto next = std::ranges::upper_bound(lines, line);
        const LogMessage* answered = log.next_message(line);
        ASSERT_EQ(answered == nullptr ? -1 : answered->line, next == lines.end() ? -1 : *next);
        const LogMessage* before = log.previous_message(line);
        const auto at = std::ranges::lower_bound(lines, line);
        ASSERT_EQ(before == nullptr ? -1 : before->line, at == lines.begin() ? -1 : *(at - 1));
    }
}

} // namespace
} // namespace pellux
