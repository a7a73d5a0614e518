#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object.h"
#include "core/objects/stream_format.h"
#include "core/objects/stream_records.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pellux {

/// Takes the bytes of a stream in order; false ends the writing.
struct ByteSink {
    bool (*write)(void* context, std::span<const std::byte> bytes) = nullptr;
    void* context = nullptr;
};

/// Writes one object stream.
///
/// Objects are borrowed until `close`. Numbers are as in docs/formats.md. After a failure of the
/// sink, or with more objects than a number can name, nothing more is written and `failed` holds.
class ObjectWriter {
public:
    /// Writes the path record. `remap` is borrowed.
    ObjectWriter(ByteSink sink, Poly_head head, std::span<const ClassRemap> remap = {});
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
    /// Ends the section and adds header and trailer; false when anything failed.
    [[nodiscard]] bool close();

    [[nodiscard]] bool failed() const { return failed_; }

    /// For the writers of records: which layout their caller wants.
    int layout = 0;

private:
    struct AddressEntry {
        const Object* object = nullptr;
        std::uint32_t number = 0;
    };

    void put_byte(std::uint8_t byte);
    void put_word(std::uint32_t value);
    void flush_buffer();
    std::uint32_t number_of(const Object& object);
    void grow_addresses();

    ByteSink sink_;
    Poly_head head_;
    std::span<const ClassRemap> remap_;
    Vector<AddressEntry> addresses_;  ///< open addressing, a power of two, at most half full
    Vector<const Object*> by_number_; ///< index is the object's number; 0 is not used
    Vector<bool> written_;            ///< by object number
    Vector<bool> class_named_;        ///< by class number
    std::uint32_t sections_ = 0;
    std::uint32_t position_ = 0; ///< bytes that lie before the buffer's start
    bool failed_ = false;
    bool closed_ = false;
    std::size_t used_ = 0;
    std::byte buffer_[k_stream_buffer];
};

} // namespace pellux
