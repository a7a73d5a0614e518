#include "core/objects/object_reader.h"

#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "core/objects/messages.h"

#include <cstring>

namespace pellux {

void ObjectReader::start(std::span<const std::byte> bytes, const char* name,
                         std::size_t object_count, std::size_t class_count) {
    bytes_ = bytes;
    name_ = name;
    class_count_ = class_count;
    memory_max_ =
        allocatorStatistics().bytes_in_use + k_memory_times * bytes.size() + k_memory_least;
    objects_.resize(object_count);
}

std::uint8_t ObjectReader::get_byte() {
    if (at_ >= end_) {
        fail();
        return 0;
    }
    return std::to_integer<std::uint8_t>(bytes_[at_++]);
}

std::uint32_t ObjectReader::get_long_u32() {
    const std::uint8_t first = get_byte();
    const std::size_t following = first >> 5;
    if (following > 4 || following > end_ - at_) {
        fail();
        return 0;
    }
    const std::byte* next = bytes_.data() + at_;
    at_ += following;
    std::uint32_t value = first & 0x1FU;
    for (std::size_t i = 0; i < following; ++i)
        value = value << 8 | std::to_integer<std::uint32_t>(next[i]);
    return value;
}

std::uint16_t ObjectReader::get_long_u16() {
    const std::uint8_t first = get_byte();
    if (first < k_short_limit)
        return first;
    unsigned value = first >> 6 == 1 ? first & 0x3FU : get_byte();
    value = value << 8 | get_byte();
    return damaged_ ? std::uint16_t{0} : static_cast<std::uint16_t>(value);
}

std::span<const std::byte> ObjectReader::get_bytes(std::size_t count) {
    if (count > end_ - at_) {
        fail();
        return {};
    }
    const auto bytes = bytes_.subspan(at_, count);
    at_ += count;
    return bytes;
}

void ObjectReader::get_present_text(NullableText& text) {
    if (StreamMark{get_byte()} != StreamMark::text) {
        fail();
        return;
    }
    const std::byte* start = bytes_.data() + at_;
    const void* end = std::memchr(start, 0, end_ - at_);
    if (end == nullptr) {
        fail();
        return;
    }
    const auto length = static_cast<std::size_t>(static_cast<const std::byte*>(end) - start);
    text.assign_without_nul({reinterpret_cast<const char*>(start), length});
    at_ += length + 1;
}

bool ObjectReader::may_take(std::uint64_t bytes) {
    const std::uint64_t block = size_of_class(size_class_of(bytes));
    if (allocatorStatistics().bytes_in_use + block > memory_max_)
        fail();
    return !damaged_;
}

ObjectNumber ObjectReader::get_reference() {
    const StreamMark mark{get_byte()};
    if (mark == StreamMark::object || mark == StreamMark::object_of_new_class)
        return read_object(mark);
    if (mark == StreamMark::reference) {
        const std::uint32_t number = get_u32();
        // What no number of this stream can be is told like any object that is not there.
        return ObjectNumber{number == 0 && !damaged_ ? UINT32_MAX : number};
    }
    if (mark == StreamMark::reference_inside) {
        static_cast<void>(get_u32());
        static_cast<void>(get_u32());
        return damaged_ ? ObjectNumber::none : ObjectNumber{UINT32_MAX};
    }
    if (mark != StreamMark::absent)
        fail();
    return ObjectNumber::none;
}

const ClassRecord* ObjectReader::read_class(StreamMark mark) {
    const ClassRecord* record = nullptr;
    if (mark == StreamMark::object_of_new_class) {
        NullableText class_name;
        get_text(class_name);
        if (damaged_ || class_name.view().size() > k_class_name_max)
            return nullptr;
        record = find_class(class_name.view());
        for (const ClassRemap& entry : remap_)
            if (class_name.view() == entry.from->name)
                record = entry.to;
        if (record == nullptr)
            damage_ = format_message(msg_class_not_found, visible_text(class_name.view()).c_str());
    }
    const std::uint16_t number = get_u16();
    if (damaged_ || number >= class_count_)
        return nullptr;
    if (mark == StreamMark::object_of_new_class)
        classes_.insert_or_assign(number, record);
    const auto found = classes_.find(number);
    return found == classes_.end() ? nullptr : found->second;
}

/// `mark` has been read: the object itself follows.
ObjectNumber ObjectReader::read_object(StreamMark mark) {
    const ClassRecord* record = read_class(mark);
    const ObjectNumber number{get_u32()};
    Owned<Object>* place = slot(number);
    if (damaged_ || record == nullptr || place == nullptr || *place != nullptr ||
        depth_ == k_depth_max) {
        fail();
        return ObjectNumber::none;
    }
    *place = record->make();
    Object* object = place->get();
    const std::size_t fields_at = at_;
    ++depth_;
    object->read_poly(*this);
    --depth_;
    if (at_ == fields_at || !may_take(0))
        fail();
    return damaged_ ? ObjectNumber::none : number;
}

ObjectNumber ObjectReader::read_sections(std::uint32_t count) {
    ObjectNumber first = ObjectNumber::none;
    for (std::uint32_t section = 0; section < count && !damaged_; ++section) {
        for (;;) {
            const StreamMark mark{get_byte()};
            if (damaged_ || mark == StreamMark::section_end)
                break;
            if (mark != StreamMark::object && mark != StreamMark::object_of_new_class) {
                fail();
                break;
            }
            const ObjectNumber number = read_object(mark);
            if (first == ObjectNumber::none)
                first = number;
        }
    }
    for (std::size_t i = 0; i < objects_.size() && !damaged_; ++i)
        if (objects_[i] != nullptr)
            objects_[i]->link(*this);
    return damaged_ ? ObjectNumber::none : first;
}

Owned<Object>* ObjectReader::slot(ObjectNumber number) {
    const auto index = static_cast<std::uint32_t>(number);
    return index == 0 || index >= objects_.size() ? nullptr : &objects_[index];
}

Object* ObjectReader::referenced(ObjectNumber number) {
    if (number == ObjectNumber::none || damaged_)
        return nullptr;
    Owned<Object>* place = slot(number);
    if (place != nullptr && *place != nullptr)
        return place->get();
    if (!missing_reported_)
        error(-1, msg_missing_object, name_);
    missing_reported_ = true;
    fail();
    return nullptr;
}

} // namespace pellux
