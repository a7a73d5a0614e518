#include "windows/controls/property_text.h"
#include "windows/controls/status_fields.h"
#include "windows/controls/toolbar_layout.h"
#include "windows/controls/toolbar_lines.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace pellux {
namespace {

Vector<String> lines_of(const std::vector<std::string_view>& texts) {
    return {texts.begin(), texts.end()};
}

TEST(PropertyText, ReadsValuesAndTakesWhatItCannotReadAsMissing) {
    EXPECT_EQ(parse_boolean("TRUE"), true);
    EXPECT_EQ(parse_boolean("FALSE"), false);
    EXPECT_FALSE(parse_boolean("true") || parse_boolean("1") || parse_boolean(""));

    const struct {
        std::string_view text;
        std::optional<PropertyPair> pair;
    } pairs[] = {
        {"16x16", {{false, 16, 16}}},
        {"150x22rest", {{false, 150, 22}}},
        {"4,3", {{false, 4, 3}}},
        {" -4  +3", {{false, -4, 3}}},
        {"99999999999x-99999999999", {{false, INT_MAX, INT_MIN}}},
        {"AUTO", {{true, 0, 0}}},
        {"16x", {}},
        {"16xx16", {}},
        {"", {}},
    };
    for (const auto& row : pairs)
        EXPECT_EQ(parse_pair(row.text), row.pair) << row.text;

    const struct {
        std::string_view text;
        std::optional<Color> color;
    } colors[] = {
        {"RED", Color::red},
        {"DKGRAY", Color::dark_gray},
        {"LTGRAY", Color::light_gray},
        {"1,2,3", make_color(1, 2, 3)},
        {"300x-5 7", make_color(255, 0, 7)},
        {"Red", {}},
        {"", {}},
    };
    for (const auto& row : colors) {
        EXPECT_EQ(parse_color(row.text), row.color) << row.text;
        if (row.color) {
            EXPECT_EQ(parse_color(view(color_text(*row.color))), row.color) << row.text;
        }
    }

    EXPECT_EQ(parse_text("\"a \"b\" c\""), "a \"b\" c");
    EXPECT_EQ(parse_text("\"open"), "open");
    EXPECT_EQ(parse_text("\""), "");
    EXPECT_EQ(parse_text("plain"), "plain");
}

TEST(PropertyText, FindsThePropertyOfThatWholeName) {
    const auto lines =
        lines_of({"SIZES=1x1", "SIZE", "SIZE= 2x3 ", "SIZE=4x5", "T=\"a b\"", "N=x"});
    EXPECT_EQ(pair_property(lines, "SIZE"), (PropertyPair{false, 2, 3}));
    EXPECT_EQ(find_property(lines, "IZE"), std::nullopt);
    EXPECT_EQ(text_property(lines, "T", "none"), "a b");
    EXPECT_EQ(text_property(lines, "U", "none"), "none");
    EXPECT_EQ(number_property(lines, "N", 7), 7);
    EXPECT_EQ(color_property(lines, "N", Color::cyan), Color::cyan);
    EXPECT_TRUE(boolean_property(lines, "N", true));
}

/// The controls as "type:id title picture description width entries selection", one per line, then
/// the errors.
std::string told(const ToolbarDescription& description) {
    std::string text;
    for (const ToolbarItem& item : description.items) {
        text += std::to_string(static_cast<int>(item.type)) + ":" + std::to_string(item.id);
        if (!item.title.empty())
            text += " '" + std::string(item.title.c_str()) + "'";
        if (item.resource_id != 0)
            text += " #" + std::to_string(item.resource_id);
        if (!item.description.empty())
            text += " \"" + std::string(item.description.c_str()) + "\"";
        if (item.width != 0)
            text += " " + std::to_string(item.width);
        for (const String& entry : item.items)
            text += " [" + std::string(entry.c_str()) + "]";
        if (item.selection != 0)
            text += " @" + std::to_string(item.selection);
        text += "\n";
    }
    for (const String& error : description.errors)
        text += "! " + std::string(error.c_str()) + "\n";
    return text;
}

TEST(ToolbarLines, EachControlLineIsAControlOrAnError) {
    const std::string unparsed = "! Toolbar could not parse control type or id from '";
    const struct {
        std::string line;
        std::string told;
    } rows[] = {
        {"PICBUTN=201,301,\"Open file.\"", "4:201 #301 \"Open file.\"\n"},
        {"PICBUTN=201 , 301 , Open , 40", "4:201 #301 \"Open\" 40\n"},
        {"TOGLBUTN=5,301", "5:5 #301\n"},
        {"TOGLBUTN=5,301,,30", "5:5 #301 \"30\"\n"},
        {"TOGLBUTN=5,301,\"\",30", "5:5 #301 30\n"},
        {"PICBUTN=5,\"Open\"", "! Toolbar could not parse resource_id from 'PICBUTN=5,\"Open\"'\n"},
        {"BUTTON=1,\"Go, now\", 50", "1:1 'Go, now' 50\n"},
        {"BUTTON=1,Go now", "1:1 'Go'\n"},
        {"BUTTON=1,\"not closed, 50", "1:1 'not closed, 50'\n"},
        {"BUTTON=1", "1:1\n"},
        {"BUTTON=1,Go,99999999999", "1:1 'Go' 2147483647\n"},
        {"TOGLTEXT=6,Wrap,\"Wrap lines\",70", "6:6 'Wrap' \"Wrap lines\" 70\n"},
        {"TOGLTEXT=6, ,", "! Toolbar could not parse title from 'TOGLTEXT=6, ,'\n"},
        {"LISTBUTTON=2,\"One;Two;;Three;\",80,2", "2:2 80 [One] [Two] [] [Three] @2\n"},
        {"LISTEDIT=3,A;B", "3:3 [A] [B]\n"},
        {"SEPARATOR", "8:0\n"},
        {" SEPARATOR =", "8:0\n"},
        {"SEPARATOR=0,10", "8:0 10\n"},
        {"PICBUTN", unparsed + "PICBUTN' in toolbar\n"},
        {"PICBUTN=0,301", unparsed + "PICBUTN=0,301' in toolbar\n"},
        {"=5,301", unparsed + "=5,301' in toolbar\n"},
    };
    for (const auto& row : rows) {
        const auto description = parse_toolbar_lines(
            lines_of({"BUTTON=8,first", "HEIGHT=3", "SEPARATOR=9", row.line, "BUTTON=99,last"}));
        const bool is_error = row.told.starts_with('!');
        EXPECT_EQ(told(description),
                  is_error ? "8:9\n1:99 'last'\n" + row.told : "8:9\n" + row.told + "1:99 'last'\n")
            << row.line;
    }
}

TEST(ToolbarLines, FromOneToFiftyAreReadUpToAnUnknownType) {
    EXPECT_EQ(told(parse_toolbar_lines(
                  lines_of({"title", "BUTTON=1,a", "KNOB=0", "KNOB=2,b", "BUTTON=3,c", "KNOB=4"}))),
              "1:1 'a'\n! Toolbar could not parse control type or id from 'KNOB=0' in toolbar\n"
              "! 'KNOB' is not a legal control type for toolbar.\n");
    EXPECT_EQ(told(parse_toolbar_lines({})),
              "! Could not get properties for toolbar in toolbar E_CREATE!\n");
    Vector<String> lines = lines_of({"title", "PLAIN=TRUE"});
    lines.resize(50, "SEPARATOR");
    EXPECT_EQ(parse_toolbar_lines(lines).items.size(), 48U);
    EXPECT_TRUE(parse_toolbar_lines(lines).settings.is_plain);
    lines.push_back("SEPARATOR");
    EXPECT_EQ(told(parse_toolbar_lines(lines)), "! Too many lines of instance data (51 > 50)\n");
    EXPECT_FALSE(parse_toolbar_lines(lines).settings.is_plain);
    EXPECT_EQ(told(parse_toolbar_lines(lines_of({"SEPARATOR"}))), "");
}

TEST(ToolbarLines, SettingsHaveTheirDefaultsAndRulesOverEachOther) {
    const ToolbarSettings none = parse_toolbar_lines(lines_of({"title"})).settings;
    EXPECT_EQ(none.fill, static_cast<Color>(0x0AC0C0C0));
    EXPECT_EQ(none.text, static_cast<Color>(0x07000000));
    EXPECT_TRUE(none.top_offset == 3 && none.left_start == 4 && none.left_offset == 0 &&
                none.top_start == 0 && !none.is_vertical && !none.is_debug);

    const struct {
        std::vector<std::string_view> lines;
        const char* flags; ///< autosized, scaled, translated
    } rows[] = {
        {{"t"}, "A--"},
        {{"t", "AUTOSIZED=FALSE"}, "---"},
        {{"t", "SCALED=TRUE", "AUTOSIZED=TRUE"}, "-S-"},
        {{"t", "SCALED=FALSE"}, "A--"},
        {{"t", "SIZE=100x28", "SCALED=TRUE"}, "---"},
        {{"t", "SIZE=AUTO"}, "A--"},
        {{"t", "TRANSLATED=TRUE"}, "A-T"},
        {{"t", "POS=0,0", "TRANSLATED=TRUE"}, "A--"},
    };
    for (const auto& row : rows) {
        const ToolbarSettings settings = parse_toolbar_lines(lines_of(row.lines)).settings;
        const std::string flags = std::string(settings.is_autosized ? "A" : "-") +
                                  (settings.is_scaled ? "S" : "-") +
                                  (settings.is_translated ? "T" : "-");
        EXPECT_EQ(flags, row.flags) << row.lines.back();
    }

    const ToolbarSettings plain =
        parse_toolbar_lines(lines_of({"t", "PLAIN=TRUE", "FILL_COLOR=RED", "TEXT_COLOR=1,2,3",
                                      "TOP_OFFSET=99999", "VERTICAL=TRUE", "TASK_WIN=TRUE"}))
            .settings;
    EXPECT_EQ(plain.fill, Color::white);
    EXPECT_EQ(plain.text, Color::black);
    EXPECT_EQ(plain.top_offset, 32767);
    EXPECT_TRUE(plain.is_vertical && plain.is_task_window);
}

TEST(ToolbarLayout, PlacesControlsOneBehindTheOther) {
    const struct {
        const char* line;
        Rect lying;   ///< at 10 on a bar of 28
        Rect upright; ///< at 10 on a bar of 40, 2 free at both sides
    } rows[] = {
        {"PICBUTN=1,301", {3, 10, 25, 32}, {10, 2, 46, 38}},
        {"PICBUTN=1,301,x,50", {3, 10, 25, 60}, {10, 2, 60, 38}},
        {"BUTTON=1,\"Gr\u00fcn\"", {3, 10, 25, 10 + 4 * 7 + 16}, {10, 2, 50, 38}},
        {"SEPARATOR", {3, 10, 25, 16}, {10, 2, 14, 38}},
        {"LISTBUTTON=1,a;long;bb", {3, 10, 3 + 32 + 64, 10 + 4 * 7 + 30}, {10, 2, 106, 38}},
        {"LISTEDIT=1", {3, 10, 3 + 32 + 64, 10 + 10 * 7 + 45}, {10, 2, 106, 38}},
        {"LISTEDIT=1,a;b;c;d;e", {3, 10, 3 + 32 + 80, 10 + 7 + 45}, {10, 2, 122, 38}},
        {"BUTTON=1,x,2147483647", {3, 10, 25, 32767}, {10, 2, 32767, 38}},
    };
    ToolbarSettings lying;
    ToolbarSettings upright;
    upright.is_vertical = true;
    upright.left_offset = 2;
    upright.top_start = 9;
    EXPECT_EQ(first_position(lying), 4);
    EXPECT_EQ(first_position(upright), 9);
    for (const auto& row : rows) {
        const auto item = parse_toolbar_lines(lines_of({"title", row.line})).items.at(0);
        const ToolbarPlace across = place_item(item, lying, {300, 28, 7}, 10);
        EXPECT_EQ(across.rect, row.lying) << row.line;
        EXPECT_EQ(across.next, row.lying.right) << row.line;
        const ToolbarPlace down = place_item(item, upright, {40, 300, 7}, 10);
        EXPECT_EQ(down.rect, row.upright) << row.line;
        EXPECT_EQ(down.next, 10 + down.width > 32767 ? 32767 : 10 + down.width) << row.line;
    }
}

TEST(StatusFields, TheFirstHasTheRoomThatTheOthersLeave) {
    const struct {
        std::vector<int> widths;
        int bar;
        std::vector<FieldPlace> places;
    } rows[] = {
        {{50}, 300, {{8, 292}}},
        {{50, 60, 40}, 300, {{8, 160}, {176, 236}, {252, 292}}},
        {{5, 60, 40}, 130, {{8, 13}, {29, 89}, {105, 122}}},
        {{90, 60, 40}, 130, {{8, 46}, {62, 122}, {122, 122}}},
        {{90, 60}, 4, {{8, 8}, {8, 8}}},
        {{1, INT_MAX, INT_MAX}, 100, {{8, 9}, {25, 92}, {92, 92}}},
    };
    for (const auto& row : rows) {
        const auto places = place_fields(row.widths, {row.bar, 8, 16});
        EXPECT_EQ(std::vector(places.begin(), places.end()), row.places) << row.bar;
    }
    const auto fields = split_fields("a\t\tb");
    EXPECT_EQ(std::vector(fields.begin(), fields.end()),
              (std::vector<std::string_view>{"a", "", "b"}));
    EXPECT_EQ(split_fields("").size(), 1U);
}

TEST(StatusFields, ATextWithoutRoomEndsInAnEllipsis) {
    const TextMeasure one_each{[](void*, std::string_view text) {
        int count = 0;
        for (const char c : text)
            count += (c & 0xC0) != 0x80;
        return count;
    }};
    const struct {
        int room;
        std::string_view text;
    } rows[] = {{9, "m\u00fcde Enten"},
                {10, "m\u00fcde Enten"},
                {8, "m\u00fcde En\u2026"},
                {6, "m\u00fcde\u2026"},
                {2, "m\u2026"},
                {1, "\u2026"},
                {0, ""},
                {-5, ""}};
    for (const auto& row : rows)
        EXPECT_EQ(view(elide("m\u00fcde Enten", row.room, one_each)),
                  row.room == 9 ? "m\u00fcde Ent\u2026" : row.text)
            << row.room;
}

} // namespace
} // namespace pellux
