#include "tools/bpr/project_json.h"

#include "tests/support/captured_reports.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;

class ProjectJson : public testing::Test, protected CapturedReports {
protected:
    Owned<Project> parse(std::string_view text) {
        said_.clear();
        return project_from_json(text, "p.json", header_);
    }

    ProjectHeader header_;
};

TEST_F(ProjectJson, WhatIsWrittenReadsBackToTheSameBytes) {
    std::string all_bytes;
    for (int c = 1; c < 256; ++c)
        all_bytes += static_cast<char>(c);
    const struct {
        std::string_view note;
        std::string_view json;
    } rows[] = {
        {"gr\u00F6\u00DFe \u20AC", "\"gr\u00F6\u00DFe \u20AC\""},
        {"gr\xF6", "{\n          \"bytes\": \"67 72 f6\"\n        }"},
        {"\x1B[2J\a\x7F\u0080\u009F\u00A0", R"("\u001b[2J\u0007\u007f\u0080\u009f)"
                                            "\u00A0\""},
        {"\"\\/\b\f\n\r\t", R"("\"\\/\b\f\n\r\t")"},
        {"", "\"\""},
        {all_bytes, "{\n          \"bytes\": \"01 02 03 "},
    };
    Project project;
    for (const auto& row : rows) {
        project.sources.push_back(make_owned<VHDL_source>());
        project.sources.back()->file_name.assign("a.vhd");
        project.sources.back()->note.assign(row.note);
        project.sources.back()->words[7] = 0xFFFFFFFF;
    }
    project.sources[1]->kind = SourceKind::pla;
    project.top_design = project.sources[1].get();
    project.options.flags = INT32_MIN;
    project.options.tab_width = -1;
    for (int i = 0; i < 256; ++i)
        project.print_record.push_back(static_cast<std::byte>(i));
    header_.version.assign("1x05");
    header_.description.clear();
    const String text = project_to_json(project, header_);
    EXPECT_NE(view(text).find("\"description\": null"), std::string_view::npos);
    header_ = {};
    const Owned<Project> back = parse(view(text));
    ASSERT_NE(back, nullptr) << said_.front();
    EXPECT_EQ(project_to_json(*back, header_), text);
    EXPECT_EQ(header_.version.view(), "1x05");
    EXPECT_FALSE(header_.description.present());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(back->sources[i]->note.view(), rows[i].note);
        EXPECT_NE(view(text).find("\"note\": " + std::string(rows[i].json)), std::string_view::npos)
            << rows[i].json;
    }
}

TEST_F(ProjectJson, WhatIsLeftOutIsAsInANewProject) {
    for (const char* top : {"1", R"("\u00F6.vhd")", R"({"bytes": "C3 b6 2e766864"})"}) {
        const Owned<Project> project = parse(
            R"({"project": {"options": {"library": "lib"}, "top_design": )" + std::string(top) +
            R"(, "sources": [{"file_name": "x.vhd"}, {"file_name": "\u00F6.vhd"}]}})");
        ASSERT_NE(project, nullptr);
        EXPECT_EQ(project->top_design, project->sources[1].get());
        EXPECT_EQ(project->options.flags, k_new_project_flags);
        EXPECT_EQ(project->sources[0]->options.optimise_level, -1);
        EXPECT_EQ(header_.version.view(), "1x07");
        EXPECT_FALSE(project->file_name.present());
        EXPECT_EQ(said_,
                  std::vector<std::string>{"'p.json': project.options.library has no effect: "
                                           "each source names its own."});
    }
}

std::string in_project(const std::string& fields) {
    return "{\"project\": {" + fields + "}}";
}

std::string in_source(const std::string& fields) {
    return in_project("\"sources\": [{\"file_name\": \"a\"}, {" + fields + "}]");
}

TEST_F(ProjectJson, WhatDoesNotFitIsToldWithItsPlace) {
    const std::string text = ": a text or null is expected";
    const std::string nul = ": a text can't hold the character 0";
    const std::string hex = ": pairs of hexadecimal digits are expected";
    const std::string flags = ": a whole number from -2147483648 to 2147483647 is expected";
    const std::string word = ": a whole number from 0 to 4294967295 is expected";
    const std::string words = "project.sources[1].words";
    const std::string eight = words + ": an array of 8 numbers is expected";
    const std::string top =
        "project.top_design: the number or name of a source, or null, is expected";
    const std::string name = "project.sources[1].file_name: the name of a file is expected";
    const struct {
        std::string json;
        std::string message; ///< between the document's name and the full stop
    } rows[] = {
        {"", "line 1, column 1: this is no JSON document"},
        {"{\n  \"project\": {},\n  oops\n}", "line 3, column 3: this is no JSON document"},
        {"{\"\u00F6\xFF\":}", "line 1, column 4: this is no JSON document"},
        {{"{}\n \0{}", 7}, "line 2, column 2: this is no JSON document"},
        {"[]", "the document: an object is expected"},
        {R"({"project": 1})", "project: an object is expected"},
        {R"({"projekt": {}})", "projekt: unknown key"},
        {R"({"header": {"version": "1X07"}})",
         "header.version: \"1x04\", \"1x05\", \"1x06\" or \"1x07\" is expected"},
        {"{\"" + std::string(199, 'a') + "\u00F6b\": 1}",
         std::string(199, 'a') + "\u00F6...: unknown key"},
        {R"({"\u001b\n": 1})", "\\u001b\\u000a: unknown key"},
        {in_project(R"("sources": {})"), "project.sources: an array is expected"},
        {in_project(R"("file_name": 3)"), "project.file_name" + text},
        {in_project(R"("file_name": {})"), "project.file_name" + text},
        {in_project(R"("file_name": "a\u0000")"), "project.file_name" + nul},
        {in_source(R"("note": {"bytes": "61 00"})"), "project.sources[1].note.bytes" + nul},
        {in_source(R"("note": {"bytes": "61  62"})"), "project.sources[1].note.bytes" + hex},
        {in_project(R"("print_record": "0AF")"), "project.print_record" + hex},
        {in_project(R"("options": {"flags": 1e400})"), "project.options.flags" + flags},
        {in_project(R"("options": {"flags": 2147483648})"), "project.options.flags" + flags},
        {in_project(R"("top_design": 1, "sources": [{"file_name": "a"}])"), top},
        {in_project(R"("top_design": "A", "sources": [{"file_name": "a"}])"), top},
        {in_source(R"("options": {"tabs": 1})"), "project.sources[1].options.tabs: unknown key"},
        {in_source(R"("options": {"tab_width": 32768})"),
         "project.sources[1].options.tab_width: a whole number from -32768 to 32767 is expected"},
        {in_source(R"("kind": 2)"), "project.sources[1].kind: 0 or 1 is expected"},
        {in_source(R"("words": [1.5])"), words + "[0]" + word},
        {in_source(R"("words": [0, -1e400])"), words + "[1]" + word},
        {in_source(R"("words": [0,0,-1])"), words + "[2]" + word},
        {in_source(R"("words": [0,0,0,0,0,0,0])"), eight},
        {in_source(R"("words": [0,0,0,0,0,0,0,0,0])"), eight},
        {in_source(R"("file_name": "")"), name},
        {in_source(R"("kind": 0)"), name},
        {in_source(R"("note": "", "note": null)"),
         "project.sources[1].note: this key stands twice in one object"},
    };
    for (const auto& row : rows) {
        header_ = {};
        EXPECT_EQ(parse(row.json), nullptr) << row.json;
        EXPECT_EQ(said_, std::vector<std::string>{"'p.json': " + row.message + "."}) << row.json;
    }
}

} // namespace
} // namespace pellux
