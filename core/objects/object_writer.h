#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object.h"
#include "core/objects/stream_format.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pellux {

/// Takes the bytes of a stream in order; false ends the writing.
struct ByteSink {
    bool (*write)(void* context, std::span<const std::byte> bytes) = nullptr;
    void* context = nullptr;
};

/// Writes the objects of one stream; object_stream.h puts a header and a trailer to them.
///
/// Objects are borrowed until the stream's end. After a failure of the sink, or with more objects
/// or bytes than a number can name, nothing more is written and `failed` holds.
class ObjectWriter {
public:
    /// `remap` is borrowed.
    explicit ObjectWriter(ByteSink sink, std::span<const ClassRemap> remap = {});
    ~ObjectWriter();
    ObjectWriter(const ObjectWriter&) = delete;
    ObjectWriter& operator=(const ObjectWriter&) = delete;

    void put_u32(std::uint32_t value);
    void put_u16(std::uint16_t value);
    void put_int(std::int32_t value) { put_u32(static_cast<std::uint32_t>(value)); }
    void put_short(std::int16_t value) { put_u16(static_cast<std::uint16_t>(value)); }
    void put_bytes(std::span<const std::byte> bytes);
    void put_text(const NullableText& text);
    /// Null is written as absent. The object itself follows at the latest with the section's end.
    void put_reference(const Object* object);

    /// The object, or a reference when it is written already.
    void write_object(const Object& object);
    /// Writes what was referred to and not yet written, then ends the section.
    void end_section();
    /// Hands the sink what it has not got yet; false when anything failed so far.
    bool flush();

    [[nodiscard]] bool failed() const { return failed_; }
    /// Offset of the next byte.
    [[nodiscard]] std::uint32_t position() const {
        return static_cast<std::uint32_t>(flushed_ + used_);
    }
    /// One more than the highest object number.
    [[nodiscard]] std::uint32_t object_count() const {
        return static_cast<std::uint32_t>(by_number_.size());
    }
    [[nodiscard]] std::uint32_t sections() const { return sections_; }

    /// For the writers of records: which layout their caller wants.
    int layout = 0;

private:
    struct AddressEntry {
        const Object* object = nullptr;
        std::uint32_t number = 0;
    };

    void put_byte(std::uint8_t byte);
    std::uint32_t number_of(const Object& object);
    void grow_addresses();

    ByteSink sink_;
    std::span<const ClassRemap> remap_;
    Vector<AddressEntry> addresses_;  ///< open addressing, a power of two, at most half full
    Vector<const Object*> by_number_; ///< index is the object's number; 0 is not used
    Vector<bool> written_;            ///< by object number
    Vector<bool> class_named_;        ///< by class number
    std::uint32_t sections_ = 0;
    std::uint64_t flushed_ = 0; ///< bytes that lie before the buffer's start
    bool failed_ = false;
    std::size_t used_ = 0;
    std::byte buffer_[k_stream_buffer];
};

} // namespace pellux
