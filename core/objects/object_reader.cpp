#include "core/objects/object_reader.h"

#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "core/objects/messages.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

/// Mark, class number and object number: no object takes less.
constexpr std::size_t k_object_bytes_min = 3;

} // namespace

ObjectReader::~ObjectReader() {
    release(memory_);
}

StreamStatus ObjectReader::open(std::string_view path, SystemError& error) {
    name_ = path;
    File file;
    FileStat stat;
    error = open_file(file, path, OpenMode::read);
    if (!failed(error))
        error = stat_open_file(file, stat);
    if (failed(error))
        return status_;
    // The trailer first: a large file that is no stream costs nothing.
    std::byte trailer[k_stream_trailer_size];
    std::size_t got = 0;
    if (stat.size < static_cast<std::int64_t>(sizeof trailer))
        return status_;
    error = read_at(file, stat.size - static_cast<std::int64_t>(sizeof trailer), trailer, got);
    if (failed(error) || got != sizeof trailer)
        return status_;
    bytes_ = trailer;
    if (word_at(0) != k_stream_magic)
        return status_;
    const auto size = static_cast<std::size_t>(stat.size);
    memory_ = static_cast<std::byte*>(allocate(size));
    if (memory_ == nullptr)
        return status_;
    error = read_at(file, 0, {memory_, size}, got);
    if (failed(error))
        return status_;
    return open(std::span<const std::byte>(memory_, got), path);
}

StreamStatus ObjectReader::open(std::span<const std::byte> bytes, std::string_view name) {
    name_ = name;
    bytes_ = bytes;
    if (bytes.size() < k_stream_trailer_size)
        return status_;
    const std::uint32_t header_at = word_at(bytes.size() - 8);
    const std::uint32_t trailer_at = word_at(bytes.size() - 4);
    if (trailer_at != bytes.size() - k_stream_trailer_size || header_at > trailer_at ||
        word_at(trailer_at) != k_stream_magic)
        return status_;
    const std::uint32_t object_count = word_at(trailer_at + 4);
    const std::uint32_t class_numbers = word_at(trailer_at + 8);
    if (object_count > trailer_at / k_object_bytes_min + 1 || class_numbers > UINT16_MAX + 1U)
        return status_;
    objects_.resize(object_count);
    classes_.resize(std::min<std::size_t>(class_numbers, bytes.size()));
    sections_end_ = header_at;
    status_ = StreamStatus::bad_header;
    if (!read_header(trailer_at, header_at))
        return status_;
    sections_ = head_.version == 1 ? word_at(trailer_at + 12) : 1;
    status_ = StreamStatus::good;
    at_ = 0;
    end_ = sections_end_;
    if (head_.version == 1)
        read_path_record();
    return status_;
}

std::uint32_t ObjectReader::word_at(std::size_t offset) const {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word = word << 8 | std::to_integer<std::uint32_t>(bytes_[offset + i]);
    return word;
}

bool ObjectReader::read_header(std::uint32_t trailer_at, std::uint32_t header_at) {
    at_ = header_at;
    end_ = trailer_at;
    const StreamMark mark{get_byte()};
    if (mark != StreamMark::object_of_new_class)
        return false;
    const ObjectNumber number = read_object(mark);
    const Owned<Poly_head> head = take<Poly_head>(number);
    if (damaged_ || head == nullptr || head->bad)
        return false;
    head_ = std::move(*head);
    return true;
}

/// Compares the stamps of the stream's first three objects with the program's own.
void ObjectReader::read_path_record() {
    const StreamPathRecord& own = stream_path_record();
    bool same = false;
    const ObjectNumber paths = get_reference();
    const ObjectNumber classes = get_reference();
    const ObjectNumber version = get_reference();
    if (take<Path_record>(paths) != nullptr) {
        const Owned<Class_stamp> class_stamp = take<Class_stamp>(classes);
        const Owned<Version_stamp> version_stamp = take<Version_stamp>(version);
        same = class_stamp != nullptr && version_stamp != nullptr &&
               class_stamp->stamp == own.classes.stamp && version_stamp->stamp == own.version.stamp;
    }
    if (!damaged_ && !same)
        warning(-1, msg_need_to_recompile, name());
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
            error(-1, msg_class_not_found, visible_text(class_name.view()).c_str());
    }
    const std::uint16_t number = get_u16();
    if (damaged_ || number >= classes_.size())
        return nullptr;
    if (mark == StreamMark::object_of_new_class)
        classes_[number] = record;
    return classes_[number];
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
    ++depth_;
    object->read_poly(*this);
    --depth_;
    return damaged_ ? ObjectNumber::none : number;
}

ObjectNumber ObjectReader::read_all() {
    ObjectNumber first = ObjectNumber::none;
    for (std::uint32_t section = 0; section < sections_ && !damaged_; ++section) {
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
        error(-1, msg_missing_object, name());
    missing_reported_ = true;
    fail();
    return nullptr;
}

} // namespace pellux
