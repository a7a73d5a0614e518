#include "core/objects/object_writer.h"

#include <cstring>

namespace pellux {
namespace {

constexpr std::size_t k_first_addresses = 64;

std::size_t hash_address(const Object* object) {
    const auto bits = reinterpret_cast<std::uintptr_t>(object);
    return static_cast<std::size_t>((bits >> 4) * 0x9E3779B97F4A7C15U >> 20);
}

const ClassRecord& remapped(const ClassRecord& record, std::span<const ClassRemap> remap) {
    for (const ClassRemap& entry : remap)
        if (entry.from->number == record.number)
            return *entry.to;
    return record;
}

} // namespace

ObjectWriter::ObjectWriter(ByteSink sink, std::span<const ClassRemap> remap)
    : sink_(sink), remap_(remap), addresses_(k_first_addresses), by_number_(1), written_(1),
      class_named_(class_count()) {}

ObjectWriter::~ObjectWriter() = default;

bool ObjectWriter::flush() {
    if (flushed_ + used_ > UINT32_MAX)
        failed_ = true;
    if (!failed_ && used_ > 0 && !sink_.write(sink_.context, {buffer_, used_}))
        failed_ = true;
    flushed_ += used_;
    used_ = 0;
    return !failed_;
}

void ObjectWriter::put_byte(std::uint8_t byte) {
    if (used_ == k_stream_buffer)
        flush();
    buffer_[used_++] = std::byte{byte};
}

void ObjectWriter::put_bytes(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        if (used_ == k_stream_buffer)
            flush();
        const std::size_t part = std::min(bytes.size(), k_stream_buffer - used_);
        std::memcpy(buffer_ + used_, bytes.data(), part);
        used_ += part;
        bytes = bytes.subspan(part);
    }
}

void ObjectWriter::put_u32(std::uint32_t value) {
    int following = 0;
    while (following < 4 && value >= k_varint_limit[following])
        ++following;
    const std::uint32_t mark = static_cast<std::uint32_t>(following) << 5;
    put_byte(static_cast<std::uint8_t>(following == 4 ? mark : mark | value >> 8 * following));
    while (following-- > 0)
        put_byte(static_cast<std::uint8_t>(value >> 8 * following));
}

void ObjectWriter::put_u16(std::uint16_t value) {
    if (value >= 16384) {
        put_byte(0x80);
        put_byte(static_cast<std::uint8_t>(value >> 8));
    } else if (value >= 64) {
        put_byte(static_cast<std::uint8_t>(0x40 | value >> 8));
    }
    put_byte(static_cast<std::uint8_t>(value));
}

void ObjectWriter::put_text(const NullableText& text) {
    if (!text.present()) {
        put_byte(static_cast<std::uint8_t>(StreamMark::absent));
        return;
    }
    put_byte(static_cast<std::uint8_t>(StreamMark::text));
    put_bytes(std::as_bytes(std::span(text.c_str(), text.view().size() + 1)));
}

void ObjectWriter::grow_addresses() {
    Vector<AddressEntry> old(addresses_.size() * 2);
    old.swap(addresses_);
    const std::size_t mask = addresses_.size() - 1;
    for (const AddressEntry& entry : old) {
        if (entry.object == nullptr)
            continue;
        std::size_t at = hash_address(entry.object) & mask;
        while (addresses_[at].object != nullptr)
            at = (at + 1) & mask;
        addresses_[at] = entry;
    }
}

std::uint32_t ObjectWriter::number_of(const Object& object) {
    const std::size_t mask = addresses_.size() - 1;
    std::size_t at = hash_address(&object) & mask;
    for (; addresses_[at].object != nullptr; at = (at + 1) & mask)
        if (addresses_[at].object == &object)
            return addresses_[at].number;
    const auto number = static_cast<std::uint32_t>(by_number_.size());
    if (number > k_object_number_max)
        failed_ = true;
    addresses_[at] = {&object, number};
    by_number_.push_back(&object);
    written_.push_back(false);
    if (by_number_.size() * 2 > addresses_.size())
        grow_addresses();
    return number;
}

void ObjectWriter::put_reference(const Object* object) {
    if (object == nullptr) {
        put_byte(static_cast<std::uint8_t>(StreamMark::absent));
        return;
    }
    put_byte(static_cast<std::uint8_t>(StreamMark::reference));
    put_u32(number_of(*object));
}

void ObjectWriter::write_object(const Object& object) {
    const std::uint32_t number = number_of(object);
    if (failed_)
        return;
    if (written_[number]) {
        put_reference(&object);
        return;
    }
    written_[number] = true;
    const ClassRecord& record = remapped(object.class_record(), remap_);
    if (class_named_[record.number]) {
        put_byte(static_cast<std::uint8_t>(StreamMark::object));
    } else {
        class_named_[record.number] = true;
        put_byte(static_cast<std::uint8_t>(StreamMark::object_of_new_class));
        put_text(NullableText(record.name));
    }
    put_u16(record.number);
    put_u32(number);
    object.write_poly(*this);
}

void ObjectWriter::end_section() {
    for (std::size_t number = 1; number < by_number_.size() && !failed_; ++number)
        if (!written_[number])
            write_object(*by_number_[number]);
    put_byte(static_cast<std::uint8_t>(StreamMark::section_end));
    ++sections_;
    flush();
}

} // namespace pellux
