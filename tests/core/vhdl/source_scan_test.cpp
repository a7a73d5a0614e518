#include "core/vhdl/source_scan.h"
#include "core/vhdl/vhdl_lexer.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace pellux {
namespace {

using Names = std::set<std::string>;

Names identifiers_of(std::string_view text) {
    // What the scan held before must not matter.
    static SourceScan s_scan;
    scan_source(text, s_scan);
    Names names;
    s_scan.identifiers.for_each([&](std::string_view name) { names.emplace(name); });
    EXPECT_EQ(names.size(), s_scan.identifiers.size());
    for (const std::string& name : names)
        EXPECT_TRUE(s_scan.identifiers.contains(name)) << name;
    EXPECT_FALSE(s_scan.identifiers.contains("absent"));
    EXPECT_FALSE(s_scan.identifiers.contains(""));
    return names;
}

TEST(SourceScan, DoubtfulTextsHideNoIdentifier) {
    struct Row {
        std::string text;
        Names names;
    };
    const Row rows[] = {
        // Apostrophes.
        {"a'b'c", {"a", "b", "c"}},
        {"t'('\"')&u", {"t", "u"}},
        {"t'('a','(',')')&'u'", {"t"}},
        {"\\e\\'('\"')&u", {"\\e\\", "u"}},
        {"'q''('\"')&u", {"u"}},
        {"is'\"'u", {"is", "u"}},
        {"RETURN'('&u", {"return", "u"}},
        {"s'\"'u", {"s", "u"}},
        {"x.all'length'b'", {"x", "all", "length", "b"}},
        {"'''u''", {"u"}},
        {"'\nu'", {"u"}},
        {"f(1)'('\"') u", {"f"}}, // as GHDL takes it
        // Literals.
        {"16#FF#e 2#1#e+3 1e3 1.5e-3x 10NS 16#g#", {"e", "x", "ns", "g"}},
        {"16:FF: 1:=a 1:b:", {"a"}},
        {"x\"1F\" 12X\"F\" o\"7 --\" ux\"1\" q\"1\" b&\"b\"", {"ux", "q", "b"}},
        {"\"a\"\"b\" c \"-- d\" e", {"c", "e"}},
        {"%a--b% c x%1F% % d", {"c", "d"}},
        {"\"a\nb \"c\rd \"e\fg", {"b", "d", "g"}},
        // Extended identifiers.
        {"\\a\\\\B\\c \\-- \\d", {"\\a\\\\B\\", "c", "\\-- \\", "d"}},
        {"a \\b\nc\\ d", {"a", "b", "c", "d"}},
        // Comments.
        {"a--b\nc--d\re--f\vg--h\fi", {"a", "c", "e", "g", "i"}},
        {"a/*b--*/c/*\n*/d/**/e/*/f*/g", {"a", "c", "d", "e", "g"}},
        {"a - -b /- * c*/d", {"a", "b", "c", "d"}},
        {"`protect a /* \" -- b\nc", {"protect", "a", "b", "c"}},
        // Letters.
        {"GR\xDCN gr\xFCn \xDF\xFF \xC0\xD7\xE0 a\xA0z @Z[ _A1",
         {"gr\xFCn", "\xDF\xFF", "\xE0", "a", "z", "_a1"}},
        {"", {}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(identifiers_of(row.text), row.names) << row.text;
        Names tokens;
        for (const String& token : vhdl_tokens(row.text))
            tokens.emplace(view(token));
        for (const std::string& name : row.names)
            EXPECT_TRUE(tokens.contains(name)) << row.text << ": " << name;
    }
}

TEST(SourceScan, GenericInstanceIsSeen) {
    SourceScan scan;
    for (const char* text : {"package x Is-- c\n NEW g", "function f is/**/new g"}) {
        scan_source(text, scan);
        EXPECT_TRUE(scan.generic_instance) << text;
    }
    for (const char* text : {"is a new g", "is \"\" new", "isnew", "is", "p := new t; -- is new"}) {
        scan_source(text, scan);
        EXPECT_FALSE(scan.generic_instance) << text;
    }
}

TEST(SourceScan, ManyAndLongIdentifiersAreKeptApart) {
    std::string text;
    Names names;
    std::mt19937 random(11);
    for (int i = 0; i < 20000; ++i) {
        std::string name(1 + random() % 40, 'a');
        for (std::size_t c = 1; c < name.size(); ++c)
            name[c] = "abyz_019\xE9"[random() % 9];
        text += name + ' ';
        names.insert(name);
    }
    names.insert(std::string(5000, 'l'));
    text += std::string(5000, 'L');
    EXPECT_EQ(identifiers_of(text), names);
}

/// Tokens whose meaning does not hang on their neighbours, with the names that are in them.
struct Piece {
    std::string text;
    Names names;
};

/// A character literal stands behind one of the delimiters only.
constexpr std::size_t k_characters = 3;
constexpr std::size_t k_delimiters = 6;
const std::vector<Piece> k_pieces{{"'\"'", {}},
                                  {"'''", {}},
                                  {"'-'", {}},
                                  {":=", {}},
                                  {"<=", {}},
                                  {"?/=", {}},
                                  {"(", {}},
                                  {"*", {}},
                                  {";", {}},
                                  {"\"s -- '\"\"/*\"", {}},
                                  {"16#FF.a#E-2", {}},
                                  {"8:17:", {}},
                                  {"1_0.5", {}},
                                  {"X\"1F\"", {}},
                                  {"Foo", {"foo"}},
                                  {"is", {"is"}},
                                  {"\xC9t\xE9_1", {"\xE9t\xE9_1"}},
                                  {"\\Ex \" -- t\\", {"\\Ex \" -- t\\"}},
                                  {"\\a\\\\'\\", {"\\a\\\\'\\"}},
                                  {"a_type'('(','\"')", {"a_type"}},
                                  {"e'attr'b", {"e", "attr", "b"}},
                                  {"12ux\"--\"", {"ux"}}};

/// White space and comments of any sort between two tokens.
std::string gap(std::mt19937& random) {
    constexpr const char* k_gaps[] = {" ",    "\n",
                                      "\t",   "\r\n",
                                      "\xA0", " -- it's \"x\n",
                                      "--\r", "-- c\f",
                                      "--\v", "/* ' \" -- \n */",
                                      "/***/"};
    return k_gaps[random() % std::size(k_gaps)];
}

TEST(SourceScan, SoupOfKnownTokensIsTakenApart) {
    std::mt19937 random(20240229);
    std::set<Digest> digests;
    std::set<std::vector<std::size_t>> soups;
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::size_t> soup;
        Names names;
        for (std::size_t count = 1 + random() % 12; soup.size() < count;) {
            const std::size_t next = random() % k_pieces.size();
            const bool behind_delimiter =
                !soup.empty() && soup.back() - k_characters < k_delimiters;
            if (next < k_characters && !behind_delimiter)
                continue;
            soup.push_back(next);
            names.insert(k_pieces[next].names.begin(), k_pieces[next].names.end());
        }
        std::string text;
        std::string other;
        for (const std::size_t piece : soup) {
            text += k_pieces[piece].text + gap(random);
            other += gap(random) + gap(random) + k_pieces[piece].text;
        }
        ASSERT_EQ(identifiers_of(text), names) << text;
        ASSERT_EQ(identifiers_of(other), names) << other;
        const Digest digest = token_digest(text);
        ASSERT_EQ(token_digest(other), digest) << text << "\n-- and --\n" << other;
        ASSERT_EQ(soups.insert(soup).second, digests.insert(digest).second) << text;
    }
}

TEST(TokenDigest, WhiteSpaceCountsOnlyWhereGhdlMindsIt) {
    struct Pair {
        const char* a;
        const char* b;
    };
    for (const auto& [a, b] :
         {Pair{"a<=b;", "a <= b ;"}, Pair{"t'('a')", "t ' ( 'a' )"}, Pair{"is\"x\"", "is \"x\""},
          Pair{"x(1)", "x ( 1 )"}, Pair{"a:=-1", "a := - 1"}, Pair{"a**(-b)", "a ** ( - b )"}})
        EXPECT_EQ(token_digest(a), token_digest(b)) << a;
    for (const auto& [a, b] :
         {Pair{"a <= b", "a < = b"}, Pair{"10ns", "10 ns"}, Pair{"x\"1\"", "x \"1\""},
          Pair{"ux\"1\"", "ux \"1\""}, Pair{"4x\"1\"", "4 x\"1\""}, Pair{"1.5", "1 . 5"},
          Pair{"1e3", "1 e3"}, Pair{"16#F#", "16 #F#"}, Pair{"\"a\"\"b\"", "\"a\" \"b\""},
          Pair{"ab", "a b"}, Pair{"a", "A"}, Pair{"\"a b\"", "\"a  b\""}, Pair{"\\a\\b", "\\a\\ b"},
          Pair{"'x'", "' x '"}, Pair{"a", "a;"}, Pair{"a?/=b", "a? /=b"}, Pair{"", "a"}})
        EXPECT_NE(token_digest(a), token_digest(b)) << a;
}

TEST(DeclaredUnits, AreFoundWhereverTheyStand) {
    using Kind = VhdlUnitKind;
    const char* text =
        "library ieee; context lib.c; Entity /* x */ GR\xDCN is end entity;\n"
        "architecture \\A\\ of -- c\n work.GR\xDCN is begin u : entity work.e; v : entity is_e;\n"
        "end architecture \\A\\; package p is end package p; package body p is end package body;\n"
        "package x is new work.g; configuration c of e is for a end for; end configuration c;\n"
        "context Ctx is end; vunit v (e(a)) { } vunit w { } -- entity no is\n"
        "constant s : string := \"entity no is\"; for all : k use configuration work.c; entity";
    EXPECT_EQ(declared_units(text), (Vector<DeclaredUnit>{{Kind::entity, "gr\xFCn", ""},
                                                          {Kind::architecture, "\\A\\", "gr\xFCn"},
                                                          {Kind::package, "p", ""},
                                                          {Kind::package_body, "p", ""},
                                                          {Kind::package, "x", ""},
                                                          {Kind::configuration, "c", "e"},
                                                          {Kind::context, "ctx", ""},
                                                          {Kind::other, "v", ""},
                                                          {Kind::other, "w", ""}}));
}

} // namespace
} // namespace pellux
