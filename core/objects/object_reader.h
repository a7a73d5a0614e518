#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object.h"
#include "core/objects/stream_format.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <typeinfo>

namespace pellux {

/// Number of an object in its stream; `none` is an absent reference.
enum class ObjectNumber : std::uint32_t { none = 0 };

/// Reads the objects of one stream that lies in memory; object_stream.h opens it.
///
/// The reader owns the objects until they are taken. Bytes are never trusted: as soon as one does
/// not fit, `damaged` holds, every further number is 0 and every text absent. A stream whose
/// objects would take more than `k_memory_times` its size is damaged.
class ObjectReader {
public:
    explicit ObjectReader(std::span<const ClassRemap> remap = {}) : remap_(remap) {}
    ObjectReader(const ObjectReader&) = delete;
    ObjectReader& operator=(const ObjectReader&) = delete;

    /// `bytes` and `name`, which messages call them by, are borrowed. The counts are those of the
    /// trailer: object and class numbers lie below them.
    void start(std::span<const std::byte> bytes, const char* name, std::size_t object_count,
               std::size_t class_count);
    /// From now on what lies from offset `at` to `end` is read.
    void move_to(std::size_t at, std::size_t end) {
        at_ = at;
        end_ = damaged_ ? at : end;
    }
    /// Reads so many sections and links their objects; answers the number of the first one, `none`
    /// after damage. Missing objects are reported.
    [[nodiscard]] ObjectNumber read_sections(std::uint32_t count);

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

    /// For readers of records, before they take so many bytes for what a count in the stream says:
    /// false, and damage, when the stream is not worth it.
    [[nodiscard]] bool may_take(std::uint64_t bytes);

    /// For readers of records: what they read cannot be.
    void fail() {
        damaged_ = true;
        end_ = at_;
    }
    [[nodiscard]] bool damaged() const { return damaged_; }
    /// A message has named this stream already.
    [[nodiscard]] bool named_in_message() const { return missing_reported_; }
    /// A sentence about the damage; empty when there is no more to say.
    [[nodiscard]] const String& damage() const { return damage_; }

    /// For the readers of records: which layout the stream has.
    int layout = 0;

private:
    static constexpr int k_depth_max = 32;
    /// With the stream's own bytes, which lie in memory as well, this makes ten.
    static constexpr std::uint64_t k_memory_times = 9;
    static constexpr std::uint64_t k_memory_least = 65536;

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
    ObjectNumber read_object(StreamMark mark);
    const ClassRecord* read_class(StreamMark mark);
    Owned<Object>* slot(ObjectNumber number);
    Object* referenced(ObjectNumber number);

    std::span<const ClassRemap> remap_;
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    std::size_t end_ = 0; ///< of what may be read now; after damage nothing may
    const char* name_ = "";
    Vector<Owned<Object>> objects_;                  ///< by number
    Map<std::uint16_t, const ClassRecord*> classes_; ///< by the number that this stream gives them
    std::size_t class_count_ = 0;
    std::uint64_t memory_max_ = 0; ///< bytes in use, of the whole program
    String damage_;
    int depth_ = 0;
    bool damaged_ = false;
    bool missing_reported_ = false;
};

} // namespace pellux
