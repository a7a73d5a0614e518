#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object.h"
#include "core/objects/stream_format.h"
#include "core/objects/stream_records.h"
#include "core/os/files.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <typeinfo>

namespace pellux {

/// Number of an object in its stream; `none` is an absent reference.
enum class ObjectNumber : std::uint32_t { none = 0 };

enum class StreamStatus { good = 0, not_a_stream = 1, bad_header = 2 };

/// Reads one object stream that lies in memory or in a file.
///
/// The reader owns the objects until they are taken. Bytes are never trusted: as soon as one does
/// not fit, `damaged` holds, every further number is 0 and every text absent. Memory is a few times
/// the size of the stream.
class ObjectReader {
public:
    explicit ObjectReader(std::span<const ClassRemap> remap = {}) : remap_(remap) {}
    ~ObjectReader();
    ObjectReader(const ObjectReader&) = delete;
    ObjectReader& operator=(const ObjectReader&) = delete;

    /// Reads the file into memory and opens it; `error` tells when it cannot be read.
    StreamStatus open(std::string_view path, SystemError& error);
    /// `bytes` are borrowed, `name` is what messages call them.
    StreamStatus open(std::span<const std::byte> bytes, std::string_view name);

    [[nodiscard]] StreamStatus status() const { return status_; }
    [[nodiscard]] const Poly_head& head() const { return head_; }
    [[nodiscard]] const char* name() const { return name_.c_str(); }

    /// Reads all sections and links their objects; answers the number of the first one, `none`
    /// after damage. Unknown classes and missing objects are reported.
    [[nodiscard]] ObjectNumber read_all();

    [[nodiscard]] std::uint32_t get_u32() {
        if (at_ < end_ && std::to_integer<std::uint32_t>(bytes_[at_]) < k_varint_limit[0])
            return std::to_integer<std::uint32_t>(bytes_[at_++]);
        return get_long_u32();
    }
    [[nodiscard]] std::uint16_t get_u16() {
        if (at_ < end_ && std::to_integer<std::uint16_t>(bytes_[at_]) < k_short_limit)
            return std::to_integer<std::uint16_t>(bytes_[at_++]);
        return get_long_u16();
    }
    [[nodiscard]] std::int32_t get_int() { return static_cast<std::int32_t>(get_u32()); }
    [[nodiscard]] std::int16_t get_short() { return static_cast<std::int16_t>(get_u16()); }
    /// The next `count` bytes, borrowed; empty after damage.
    [[nodiscard]] std::span<const std::byte> get_bytes(std::size_t count);
    void get_text(NullableText& text) {
        text.clear();
        if (at_ < end_ && bytes_[at_] == std::byte{static_cast<unsigned char>(StreamMark::absent)})
            ++at_;
        else
            get_present_text(text);
    }
    /// A reference, or an object that stands in its place.
    [[nodiscard]] ObjectNumber get_reference();

    /// The object of a number, null when there is none; for `link`. An object that a reference
    /// names and the stream lacks is reported, one of another class is damage.
    template <typename Class>
    [[nodiscard]] Class* resolve(ObjectNumber number) {
        Object* object = referenced(number);
        auto* wanted = cast<Class>(object);
        if (object != nullptr && wanted == nullptr)
            fail();
        return wanted;
    }
    /// Hands an object over; null when it is not there, was taken already or is of another class.
    template <typename Class>
    [[nodiscard]] Owned<Class> take(ObjectNumber number) {
        Owned<Object>* place = slot(number);
        auto* wanted = place == nullptr ? nullptr : cast<Class>(place->get());
        if (wanted == nullptr)
            return nullptr;
        static_cast<void>(place->release());
        return Owned<Class>(wanted);
    }

    /// For readers of records: what they read cannot be.
    void fail() {
        damaged_ = true;
        end_ = at_;
    }
    [[nodiscard]] bool damaged() const { return damaged_; }
    /// A message has named this stream already.
    [[nodiscard]] bool named_in_message() const { return missing_reported_; }

    /// For the readers of records: which layout the stream has.
    int layout = 0;

private:
    static constexpr int k_depth_max = 32;

    template <typename Class>
    static Class* cast(Object* object) {
        // The exact class is the rule, and much cheaper to tell.
        if (object != nullptr && typeid(*object) == typeid(Class))
            return static_cast<Class*>(object);
        return dynamic_cast<Class*>(object);
    }

    [[nodiscard]] std::uint8_t get_byte();
    [[nodiscard]] std::uint32_t get_long_u32();
    [[nodiscard]] std::uint16_t get_long_u16();
    void get_present_text(NullableText& text);
    [[nodiscard]] std::uint32_t word_at(std::size_t offset) const;
    ObjectNumber read_object(StreamMark mark);
    const ClassRecord* read_class(StreamMark mark);
    bool read_header(std::uint32_t trailer_at, std::uint32_t header_at);
    void read_path_record();
    Owned<Object>* slot(ObjectNumber number);
    Object* referenced(ObjectNumber number);

    std::span<const ClassRemap> remap_;
    std::byte* memory_ = nullptr; ///< what `open` with a path has read
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    std::size_t end_ = 0; ///< of what may be read now; after damage nothing may
    String name_;
    StreamStatus status_ = StreamStatus::not_a_stream;
    Poly_head head_;
    std::uint32_t sections_ = 0;
    std::size_t sections_end_ = 0;
    Vector<Owned<Object>> objects_;      ///< by number
    Vector<const ClassRecord*> classes_; ///< by the number that this stream gives them
    int depth_ = 0;
    bool damaged_ = false;
    bool missing_reported_ = false;
};

} // namespace pellux
