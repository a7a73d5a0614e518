// Keeps data/vhdl.msg and the texts of the program in step. all_messages.h is made by CMake and
// includes every messages.h of the tree.

#include "all_messages.h"
#include "core/diagnostics/catalogue.h"
#include "tests/support/captured_reports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

namespace pellux {
namespace {

const std::string k_catalogue = std::string(PELLUX_SOURCE_DIR) + "/data/vhdl.msg";
constexpr std::size_t k_text_max = 98;

/// Texts that only the catalogue has: by number, or bound with nothing but their argument.
const std::set<std::string> k_without_default = {
    "E365", "E366", "E370", "E390", "E1800", "E1801", "E1803", "E1805", "E1806", "E1807", "E1808"};

bool belongs_in_the_catalogue(const char* text) {
    return std::strchr(text, '\n') == nullptr && std::strlen(text) <= k_text_max;
}

class Messages : public testing::Test, protected test::CapturedReports {};

TEST_F(Messages, TheCatalogueHasEveryTextAsTheProgramDoesUnderItsOwnNumber) {
    ASSERT_EQ(Read_text_msgs(k_catalogue.c_str()), 1);
    static std::set<int> numbers;
    for_each_message(
        [](void*, const char* id, MessageHandle& handle) {
            // Two texts of one number would be told apart by nobody who looks a message up.
            EXPECT_TRUE(numbers.insert(handle.number).second) << id;
            const bool provided = (handle.flags & MessageHandle::k_provided) != 0;
            EXPECT_EQ(provided, belongs_in_the_catalogue(handle.default_text))
                << id << " :" << handle.default_text;
            const char* text = messageText(handle, handle.default_text).text;
            if (k_without_default.contains(id))
                EXPECT_GT(std::strlen(text), std::strlen(handle.default_text)) << id;
            else
                EXPECT_STREQ(text, handle.default_text) << id;
        },
        nullptr);
    EXPECT_EQ(said_, std::vector<std::string>{});
    reset_text_msgs();
}

TEST_F(Messages, TheCatalogueHasNoTextThatNobodyUses) {
    std::ifstream file(k_catalogue);
    std::set<std::string> missing = k_without_default;
    for (std::string line; std::getline(file, line);) {
        const std::string id = line.substr(0, line.find(' '));
        if (id.empty() || id.starts_with("//") || missing.erase(id) > 0)
            continue;
        EXPECT_NE(find_message(id.c_str()), nullptr) << line;
    }
    EXPECT_TRUE(missing.empty()) << *missing.begin();
}

} // namespace
} // namespace pellux
