#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "core/objects/object_reader.h"
#include "core/objects/object_writer.h"
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

/// A record with one field of each kind and two references.
class Node : public Object {
public:
    NullableText name;
    std::uint32_t number = 0;
    std::int32_t whole = 0;
    std::int16_t small = 0;
    const Node* left = nullptr;
    const Node* right = nullptr;

    static const ClassRecord k_record;

    [[nodiscard]] const ClassRecord& class_record() const override { return k_record; }
    void write_poly(ObjectWriter& writer) const override {
        writer.put_text(name);
        writer.put_u32(number);
        writer.put_int(whole);
        writer.put_short(small);
        writer.put_reference(left);
        if (inline_right && right != nullptr)
            writer.write_object(*right);
        else
            writer.put_reference(right);
    }
    void read_poly(ObjectReader& reader) override {
        reader.get_text(name);
        number = reader.get_u32();
        whole = reader.get_int();
        small = reader.get_short();
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

Poly_head test_head() {
    Poly_head head;
    head.program_name.assign("t");
    head.time_stamp = 77;
    return head;
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
        ObjectWriter writer(sink_to(bytes), test_head(), remap);
        writer.write_object(root);
        EXPECT_TRUE(writer.close());
        return bytes;
    }

    /// The bytes for as long as the test lasts: a reader borrows them.
    const Bytes& kept(Bytes bytes) { return kept_.emplace_back(std::move(bytes)); }

    std::list<Bytes> kept_;
};

/// The bytes that `put` appends to a stream, between its path record and its section end.
template <typename Put>
std::vector<int> encoded(Put put) {
    Bytes with;
    Bytes without;
    ObjectWriter first(sink_to(with), test_head());
    put(first);
    first.end_section();
    ObjectWriter second(sink_to(without), test_head());
    second.end_section();
    std::vector<int> bytes;
    for (std::size_t i = without.size() - 1; i + 1 < with.size(); ++i)
        bytes.push_back(std::to_integer<int>(with[i]));
    return bytes;
}

TEST_F(StreamTest, NumbersTakeAsManyBytesAsTheyNeed) {
    struct Row {
        std::uint32_t value;
        std::vector<int> bytes;
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
    };
    for (const Row& row : rows)
        EXPECT_EQ(encoded([&](ObjectWriter& w) { w.put_u32(row.value); }), row.bytes) << row.value;
    const Row shorts[] = {
        {0, {0}},
        {63, {63}},
        {64, {0x40, 64}},
        {16383, {0x7F, 0xFF}},
        {16384, {0x80, 0x40, 0x00}},
        {65535, {0x80, 0xFF, 0xFF}},
    };
    for (const Row& row : shorts)
        EXPECT_EQ(
            encoded([&](ObjectWriter& w) { w.put_u16(static_cast<std::uint16_t>(row.value)); }),
            row.bytes)
            << row.value;
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_int(-1); }).size(), 5U);
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_text({}); }), std::vector<int>{4});
    EXPECT_EQ(encoded([](ObjectWriter& w) { w.put_text(NullableText("a")); }),
              (std::vector<int>{5, 'a', 0}));
}

TEST_F(StreamTest, AGraphComesBackWithItsValuesSharingAndCycles) {
    Node root;
    Node shared;
    Twin other;
    root.name.assign("root\xFF");
    root.number = 0xDEADBEEF;
    root.whole = -2;
    root.small = -32768;
    root.left = &shared;
    root.right = &other;
    shared.name.assign("");
    shared.left = &root;
    shared.right = &shared;
    other.left = &shared;
    const Bytes bytes = write(root);
    ObjectReader reader;
    ASSERT_EQ(reader.open(bytes, "t"), StreamStatus::good);
    EXPECT_STREQ(reader.head().program_name.c_str(), "t");
    EXPECT_FALSE(reader.head().program_version.present());
    EXPECT_EQ(reader.head().time_stamp, 77);
    const Owned<Node> read = reader.take<Node>(reader.read_all());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->name.view(), "root\xFF");
    EXPECT_EQ(read->number, 0xDEADBEEF);
    EXPECT_EQ(read->whole, -2);
    EXPECT_EQ(read->small, -32768);
    ASSERT_NE(read->left, nullptr);
    EXPECT_TRUE(read->left->name.present());
    EXPECT_EQ(read->left->left, read.get());
    EXPECT_EQ(read->left->right, read->left);
    ASSERT_NE(dynamic_cast<const Twin*>(read->right), nullptr);
    EXPECT_FALSE(read->right->name.present());
    EXPECT_EQ(read->right->left, read->left);
    EXPECT_TRUE(said_.empty());
}

TEST_F(StreamTest, AnObjectIsWrittenOnceAndAClassNamedOnce) {
    Node root;
    Node child;
    root.left = root.right = &child;
    const auto object = [](const Node& node) {
        return encoded([&](ObjectWriter& w) {
            w.write_object(node);
            w.write_object(node);
        });
    };
    // Class 60 and object 4, which refers twice to object 5; a second writing is a reference; the
    // child follows with the section's end and does not name the class again.
    EXPECT_EQ(object(root), (std::vector<int>{1, 5, 'N', 'o', 'd', 'e', 0,  60, 4, 4, 0, 0, 0, 3,
                                              5, 3, 5,   3,   4,   2,   60, 5,  4, 0, 0, 0, 4, 4}));
}

TEST_F(StreamTest, EveryTruncationIsRefusedAndNoFieldIsTrusted) {
    Node root;
    Node child;
    root.name.assign("a name");
    root.left = &child;
    root.right = &root;
    const Bytes whole = write(root);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        ObjectReader reader;
        EXPECT_NE(reader.open(std::span(whole).first(length), "t"), StreamStatus::good) << length;
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int value : {0, 1, 2, 3, 4, 5, 6, 26, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::byte>(value);
            ObjectReader reader;
            if (reader.open(damaged, "t") == StreamStatus::good)
                static_cast<void>(reader.read_all());
        }
    }
}

TEST_F(StreamTest, HostileTrailersAreNoStreamAndCostNothing) {
    const Bytes whole = write(Node{});
    const AllocatorStatistics before = allocatorStatistics();
    for (std::size_t word = 0; word < 6; ++word) {
        for (const std::uint32_t value : {0U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
            Bytes damaged = whole;
            for (std::size_t i = 0; i < 4; ++i)
                damaged[damaged.size() - 24 + word * 4 + i] =
                    static_cast<std::byte>(value >> (24 - 8 * i));
            ObjectReader reader;
            const StreamStatus status = reader.open(damaged, "t");
            const ObjectNumber root = reader.read_all();
            const bool harmless = word == 3 && value != 0;
            EXPECT_TRUE(root == ObjectNumber::none || harmless) << word << ' ' << value;
            EXPECT_TRUE(status != StreamStatus::good || (word > 0 && word < 4))
                << word << ' ' << value;
        }
    }
    EXPECT_LT(allocatorStatistics().peak_bytes, before.peak_bytes + 100 * whole.size() + 4096);
}

TEST_F(StreamTest, UnknownClassesMissingObjectsAndInnerReferencesAreTold) {
    Node root;
    root.name.assign("x");
    Bytes unknown = write(root);
    const std::string text(reinterpret_cast<const char*>(unknown.data()), unknown.size());
    const std::size_t name_at = text.find("Node");
    unknown[name_at] = std::byte{'M'};
    ObjectReader first;
    ASSERT_EQ(first.open(unknown, "f"), StreamStatus::good);
    EXPECT_EQ(first.read_all(), ObjectNumber::none);
    EXPECT_EQ(said_.back(), "Polyread(Object):  Class 'Mode' not found.");

    struct Dangling : Node {
        void write_poly(ObjectWriter& writer) const override {
            writer.put_text({});
            for (int i = 0; i < 3; ++i)
                writer.put_u16(0);
            writer.put_u16(static_cast<std::uint16_t>(mark));
            writer.put_u32(5);
            if (mark == StreamMark::reference_inside)
                writer.put_u32(8);
            writer.put_reference(nullptr);
        }
        StreamMark mark = StreamMark::reference;
    };
    for (const StreamMark mark : {StreamMark::reference, StreamMark::reference_inside}) {
        said_.clear();
        Dangling dangling;
        dangling.mark = mark;
        ObjectReader third;
        ASSERT_EQ(third.open(kept(write(dangling)), "f"), StreamStatus::good);
        EXPECT_EQ(third.read_all(), ObjectNumber::none);
        EXPECT_EQ(said_, std::vector<std::string>{"Missing object in 'f'."});
    }
}

TEST_F(StreamTest, NestingIsBounded) {
    std::vector<Node> chain(40);
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
        chain[i].inline_right = true;
        chain[i].right = &chain[i + 1];
    }
    ObjectReader deep;
    ASSERT_EQ(deep.open(kept(write(chain[0])), "t"), StreamStatus::good);
    EXPECT_EQ(deep.read_all(), ObjectNumber::none);
    ObjectReader shallow;
    ASSERT_EQ(shallow.open(kept(write(chain[10])), "t"), StreamStatus::good);
    const Owned<Node> read = shallow.take<Node>(shallow.read_all());
    ASSERT_NE(read, nullptr);
    int length = 1;
    for (const Node* node = read.get(); node->right != nullptr; node = node->right)
        ++length;
    EXPECT_EQ(length, 30);
}

TEST_F(StreamTest, AReferenceToAnotherClassIsDamage) {
    class Stranger : public Stream_stamp {
    public:
        [[nodiscard]] const ClassRecord& class_record() const override {
            return Version_stamp().class_record();
        }
    } stranger;
    struct Wrong : Node {
        const Object* target = nullptr;
        void write_poly(ObjectWriter& writer) const override {
            writer.put_text({});
            for (int i = 0; i < 3; ++i)
                writer.put_u16(0);
            writer.put_reference(target);
            writer.put_reference(nullptr);
        }
    } wrong;
    wrong.target = &stranger;
    ObjectReader reader;
    ASSERT_EQ(reader.open(kept(write(wrong)), "t"), StreamStatus::good);
    EXPECT_EQ(reader.read_all(), ObjectNumber::none);
}

TEST_F(StreamTest, ARemapTableReplacesClassesInBothDirections) {
    const ClassRemap remap[] = {{&Node::k_record, &Twin::k_record}};
    Node root;
    root.number = 9;
    ObjectReader written_remapped;
    ASSERT_EQ(written_remapped.open(kept(write(root, remap)), "t"), StreamStatus::good);
    EXPECT_NE(written_remapped.take<Twin>(written_remapped.read_all()), nullptr);
    ObjectReader read_remapped(remap);
    ASSERT_EQ(read_remapped.open(kept(write(root)), "t"), StreamStatus::good);
    const Owned<Twin> twin = read_remapped.take<Twin>(read_remapped.read_all());
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->number, 9U);
}

TEST_F(StreamTest, OtherStampsAreToldAndTheFileIsReadAllTheSame) {
    const Bytes bytes = write(Node{});
    stream_path_record().classes.stamp = 99;
    ObjectReader reader;
    EXPECT_EQ(reader.open(bytes, "old.bpr"), StreamStatus::good);
    stream_path_record().classes.stamp = 1;
    EXPECT_EQ(said_, std::vector<std::string>{"Warning: Need to recompile 'old.bpr'"});
    EXPECT_NE(reader.read_all(), ObjectNumber::none);
}

TEST_F(StreamTest, HeadersOfOtherVersionsAreBad) {
    Poly_head head = test_head();
    for (const std::int32_t version : {0, 1, 2, -1}) {
        head.version = version;
        Bytes bytes;
        ObjectWriter writer(sink_to(bytes), head);
        writer.write_object(Node{});
        ASSERT_TRUE(writer.close());
        ObjectReader reader;
        EXPECT_EQ(reader.open(bytes, "t"),
                  version == 0 || version == 1 ? StreamStatus::good : StreamStatus::bad_header)
            << version;
        EXPECT_EQ(reader.head().time_stamp, version == 1 ? 77 : 0);
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
    Poly_head head = test_head();
    EXPECT_EQ(printed(head), "Polymorphic File Header Version 1\nProgram:  t  Version:  none\n");
    head.program_version.assign("2");
    head.extra.assign("more");
    EXPECT_EQ(printed(head), "Polymorphic File Header Version 1\nProgram:  t  Version:  2\nmore\n");
    EXPECT_EQ(printed(Object{}), "<class Object>");
}

TEST_F(StreamTest, TheRootClassItselfCannotBeStored) {
    Bytes bytes;
    ObjectWriter writer(sink_to(bytes), {});
    writer.write_object(Object{});
    ASSERT_TRUE(writer.close());
    EXPECT_EQ(said_.back(), "Object needs a write_poly().");
    ObjectReader reader;
    ASSERT_EQ(reader.open(bytes, "t"), StreamStatus::good);
    EXPECT_STREQ(reader.head().program_name.c_str(), "<none>");
    EXPECT_EQ(reader.read_all(), ObjectNumber::none);
    EXPECT_EQ(said_.back(), "Object needs a read_poly().");
}

TEST_F(StreamTest, AFailingSinkEndsTheWriting) {
    int calls = 0;
    ObjectWriter writer({+[](void* context, std::span<const std::byte>) {
                             return ++from_context<int>(context) < 2;
                         },
                         &calls},
                        test_head());
    std::vector<Node> nodes(5000);
    for (Node& node : nodes)
        writer.write_object(node);
    EXPECT_FALSE(writer.close());
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace pellux
