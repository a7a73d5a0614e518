#include "core/common/callback.h"
#include "core/objects/object_stream.h"
#include "tests/support/captured_reports.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <utility>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;
using Bytes = std::vector<std::byte>;

/// A record with two fields and two references.
class Node : public Object {
public:
    NullableText name;
    std::uint32_t number = 0;
    const Node* left = nullptr;
    const Node* right = nullptr;

    static const ClassRecord k_record;

    [[nodiscard]] const ClassRecord& class_record() const override { return k_record; }
    void write_poly(ObjectWriter& writer) const override {
        writer.put_text(name);
        writer.put_u32(number);
        writer.put_reference(left);
        if (inline_right && right != nullptr)
            writer.write_object(*right);
        else
            writer.put_reference(right);
    }
    void read_poly(ObjectReader& reader) override {
        reader.get_text(name);
        number = reader.get_u32();
        left_number_ = reader.get_reference();
        right_number_ = reader.get_reference();
    }
    void link(ObjectReader& reader) override {
        left = reader.resolve<Node>(left_number_);
        right = reader.resolve<Node>(right_number_);
    }

    bool inline_right = false;

private:
    ObjectNumber left_number_ = ObjectNumber::none;
    ObjectNumber right_number_ = ObjectNumber::none;
};
const ClassRecord Node::k_record{"Node", 60, +[] { return Owned<Object>(make_owned<Node>()); }};

class Twin : public Node {
public:
    static const ClassRecord k_record;
    [[nodiscard]] const ClassRecord& class_record() const override { return k_record; }
};
const ClassRecord Twin::k_record{"Twin", 61, +[] { return Owned<Object>(make_owned<Twin>()); }};

ByteSink sink_to(Bytes& bytes) {
    return {+[](void* context, std::span<const std::byte> part) {
                Bytes& all = from_context<Bytes>(context);
                all.insert(all.end(), part.begin(), part.end());
                return true;
            },
            &bytes};
}

class StreamTest : public testing::Test, protected CapturedReports {
protected:
    StreamTest() {
        register_stream_classes();
        constexpr const ClassRecord* k_records[] = {&Node::k_record, &Twin::k_record};
        register_classes(k_records);
    }

    static Bytes write(const Object& root, std::span<const ClassRemap> remap = {}) {
        Bytes bytes;
        ObjectWriter writer(sink_to(bytes), remap);
        begin_stream(writer);
        writer.write_object(root);
        EXPECT_TRUE(end_stream(writer, {}));
        return bytes;
    }
    /// The bytes last as long as the test: a stream borrows them.
    StreamStatus open(InputStream& stream, Bytes bytes) {
        return open_stream(stream, kept_.emplace_back(std::move(bytes)), "f");
    }
    /// The root of a stream, null after damage.
    template <typename Class>
    Owned<Class> read(Bytes bytes, std::span<const ClassRemap> remap = {}) {
        InputStream stream(remap);
        EXPECT_EQ(open(stream, std::move(bytes)), StreamStatus::good);
        return stream.reader.take<Class>(read_all(stream));
    }

    std::list<Bytes> kept_;
};

/// The bytes that `put` makes.
template <typename Put>
std::vector<int> encoded(Put put) {
    Bytes bytes;
    ObjectWriter writer(sink_to(bytes));
    put(writer);
    EXPECT_TRUE(writer.flush());
    std::vector<int> numbers;
    for (const std::byte byte : bytes)
        numbers.push_back(std::to_integer<int>(byte));
    return numbers;
}

/// What `get` makes of such bytes; -1 for damage.
template <typename Get>
std::int64_t decoded(const std::vector<int>& numbers, Get get) {
    Bytes bytes;
    for (const int number : numbers)
        bytes.push_back(static_cast<std::byte>(number));
    ObjectReader reader;
    reader.start(bytes, "f", 1, 1);
    reader.move_to(0, bytes.size());
    const std::int64_t value = get(reader);
    return reader.damaged() ? -1 : value;
}

TEST_F(StreamTest, NumbersTakeAsManyBytesAsTheyNeed) {
    struct Row {
        std::int64_t value;
        std::vector<int> bytes;
        bool is_written = true; ///< else it is only read
    };
    const Row rows[] = {
        {0, {0}},
        {31, {31}},
        {32, {0x20, 0x20}},
        {8191, {0x3F, 0xFF}},
        {8192, {0x40, 0x20, 0x00}},
        {0x1FFFFF, {0x5F, 0xFF, 0xFF}},
        {0x200000, {0x60, 0x20, 0x00, 0x00}},
        {0x1FFFFFFF, {0x7F, 0xFF, 0xFF, 0xFF}},
        {0x20000000, {0x80, 0x20, 0x00, 0x00, 0x00}},
        {0xFFFFFFFF, {0x80, 0xFF, 0xFF, 0xFF, 0xFF}},
        {5, {0x20, 5}, false},
        {5, {0x9F, 0, 0, 0, 5}, false},
        {-1, {0x80, 0, 0, 5}, false},
        {-1, {0xA0, 0, 0, 0, 0, 5}, false},
        {-1, {}, false},
    };
    const Row shorts[] = {
        {0, {0}},
        {63, {63}},
        {64, {0x40, 64}},
        {16383, {0x7F, 0xFF}},
        {16384, {0x80, 0x40, 0x00}},
        {65535, {0x80, 0xFF, 0xFF}},
        {5, {0x40, 5}, false},
        {5, {0xFF, 0, 5}, false},
        {-1, {0x40}, false},
        {-1, {0x80, 0}, false},
    };
    const auto check = [](std::span<const Row> all, auto get, auto put) {
        for (const Row& row : all) {
            EXPECT_EQ(decoded(row.bytes, get), row.value);
            const auto bytes = encoded([&](ObjectWriter& writer) { put(writer, row.value); });
            EXPECT_EQ(row.is_written, bytes == row.bytes) << row.value;
        }
    };
    check(
        rows, [](ObjectReader& r) { return r.get_u32(); },
        [](ObjectWriter& w, auto value) { w.put_u32(static_cast<std::uint32_t>(value)); });
    check(
        shorts, [](ObjectReader& r) { return r.get_u16(); },
        [](ObjectWriter& w, auto value) { w.put_u16(static_cast<std::uint16_t>(value)); });
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_int(-1); }).size(), 5U);
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_text({}); }), std::vector<int>{4});
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_text(NullableText("a")); }),
              (std::vector<int>{5, 'a', 0}));
}

TEST_F(StreamTest, AnObjectIsWrittenOnceAndAClassNamedOnce) {
    Node root;
    Node child;
    root.left = root.right = &child;
    const auto writing = [&](ObjectWriter& w) {
        w.write_object(root);
        w.write_object(root);
        w.end_section();
    };
    // Class 60 and object 1, which refers twice to object 2; a second writing is a reference; the
    // child follows with the section's end and does not name the class again.
    EXPECT_EQ(encoded(writing), (std::vector<int>{1, 5, 'N', 'o', 'd', 'e', 0, 60, 1, 4, 0, 3, 2,
                                                  3, 2, 3,   1,   2,   60,  2, 4,  0, 4, 4, 26}));
}

TEST_F(StreamTest, AReferenceIntoAnObjectIsNotFollowed) {
    struct Inner : Node {
        void write_poly(ObjectWriter& writer) const override {
            writer.put_text({});
            writer.put_u32(0);
            writer.put_u16(static_cast<std::uint16_t>(StreamMark::reference_inside));
            writer.put_u32(5);
            writer.put_u32(8);
            writer.put_reference(nullptr);
        }
    };
    EXPECT_EQ(read<Node>(write(Inner{})), nullptr);
    EXPECT_EQ(said_, std::vector<std::string>{"Missing object in 'f'."});
}

TEST_F(StreamTest, NestingIsBounded) {
    std::vector<Node> chain(40);
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
        chain[i].inline_right = true;
        chain[i].right = &chain[i + 1];
    }
    EXPECT_EQ(read<Node>(write(chain[7])), nullptr);
    EXPECT_NE(read<Node>(write(chain[8])), nullptr);
}

TEST_F(StreamTest, ARemapTableReplacesClassesInBothDirections) {
    const ClassRemap remap[] = {{&Node::k_record, &Twin::k_record}};
    Node root;
    root.number = 9;
    EXPECT_NE(read<Twin>(write(root, remap)), nullptr);
    const Owned<Twin> twin = read<Twin>(write(root), remap);
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->number, 9U);
}

TEST_F(StreamTest, OtherStampsAreToldAndTheFileIsReadAllTheSame) {
    const Bytes bytes = write(Node{});
    for (Stream_stamp* stamp : {static_cast<Stream_stamp*>(&stream_path_record().classes),
                                static_cast<Stream_stamp*>(&stream_path_record().version)}) {
        stamp->stamp = 99;
        EXPECT_NE(read<Node>(bytes), nullptr);
        stamp->stamp = 1;
        EXPECT_EQ(std::exchange(said_, {}),
                  std::vector<std::string>{"Warning: Need to recompile 'f'"});
    }
}

TEST_F(StreamTest, PathsInTheInstallationAreStoredRelativeToIt) {
    for (const char* directory : {"/opt/v", "/opt/v/"}) {
        const test::ScopedVariable install("VELMORA_DIR", directory);
        EXPECT_EQ(stored_path("/opt/v/bin/vhdl.msg"), "$$REL$$bin/vhdl.msg");
        EXPECT_EQ(stored_path("/opt/vv/bin"), "/opt/vv/bin");
        EXPECT_EQ(loaded_path("$$REL$$bin/vhdl.msg"), "/opt/v/bin/vhdl.msg");
        EXPECT_EQ(loaded_path("/else/where"), "/else/where");
    }
    const test::ScopedVariable none("VELMORA_DIR", nullptr);
    EXPECT_EQ(stored_path("/opt/v/bin"), "/opt/v/bin");
}

TEST_F(StreamTest, HeaderAndRootObjectPrintAsListed) {
    const auto printed = [](const Object& object) {
        std::string text;
        object.print({+[](void* context, std::string_view part) {
                          from_context<std::string>(context) += part;
                      },
                      &text});
        return text;
    };
    Poly_head head;
    head.program_name.assign("t");
    EXPECT_EQ(printed(head), "Polymorphic File Header Version 1\nProgram:  t  Version:  none\n");
    head.program_version.assign("2");
    head.extra.assign("more");
    EXPECT_EQ(printed(head), "Polymorphic File Header Version 1\nProgram:  t  Version:  2\nmore\n");
    EXPECT_EQ(printed(Object{}), "<class Object>");
}

TEST_F(StreamTest, TheRootClassItselfCannotBeStored) {
    const Bytes bytes = write(Object{});
    EXPECT_EQ(said_.back(), "Object needs a write_poly().");
    EXPECT_EQ(read<Object>(bytes), nullptr);
    EXPECT_EQ(said_.back(), "Object needs a read_poly().");
}

TEST_F(StreamTest, AFailingSinkEndsTheWriting) {
    int calls = 0;
    ObjectWriter writer({+[](void* context, std::span<const std::byte>) {
                             return ++from_context<int>(context) < 2;
                         },
                         &calls});
    std::vector<Node> nodes(5000);
    for (Node& node : nodes)
        writer.write_object(node);
    EXPECT_FALSE(end_stream(writer, {}));
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace pellux
