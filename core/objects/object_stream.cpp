#include "core/objects/object_stream.h"

#include "core/diagnostics/reporter.h"
#include "core/objects/messages.h"
#include "core/os/files.h"

#include <array>

namespace pellux {
namespace {

/// Mark, class number, object number and one field: no object takes less.
constexpr std::size_t k_object_bytes_min = 4;

struct Trailer {
    std::uint32_t object_count = 0;
    std::uint32_t class_count = 0;
    std::uint32_t sections = 0;
    std::uint32_t header_at = 0;
    std::uint32_t at = 0;
};

std::uint32_t word_at(std::span<const std::byte> bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word = word << 8 | std::to_integer<std::uint32_t>(bytes[offset + i]);
    return word;
}

/// The last bytes of a stream of `size` bytes; false when they can't be.
bool read_trailer(std::span<const std::byte> bytes, std::uint64_t size, Trailer& trailer) {
    trailer = {word_at(bytes, 4), word_at(bytes, 8), word_at(bytes, 12), word_at(bytes, 16),
               word_at(bytes, 20)};
    return word_at(bytes, 0) == k_stream_magic && trailer.at == size - k_stream_trailer_size &&
           trailer.header_at <= trailer.at &&
           trailer.object_count <= trailer.at / k_object_bytes_min + 1 &&
           trailer.class_count <= UINT16_MAX + 1U;
}

bool read_header(ObjectReader& reader, const Trailer& trailer, Poly_head& head) {
    reader.move_to(trailer.header_at, trailer.at);
    const Owned<Poly_head> read = reader.take<Poly_head>(reader.get_reference());
    if (read == nullptr)
        return false;
    head = std::move(*read);
    return true;
}

/// Compares the stamps of the stream's first three objects with the program's own.
void read_path_record(InputStream& stream) {
    ObjectReader& reader = stream.reader;
    const StreamPathRecord& own = stream_path_record();
    bool same = false;
    const ObjectNumber paths = reader.get_reference();
    const ObjectNumber classes = reader.get_reference();
    const ObjectNumber version = reader.get_reference();
    if (reader.take<Path_record>(paths) != nullptr) {
        const Owned<Class_stamp> class_stamp = reader.take<Class_stamp>(classes);
        const Owned<Version_stamp> version_stamp = reader.take<Version_stamp>(version);
        same = class_stamp != nullptr && version_stamp != nullptr &&
               class_stamp->stamp == own.classes.stamp && version_stamp->stamp == own.version.stamp;
    }
    if (!reader.damaged() && !same)
        warning(-1, msg_need_to_recompile, stream.name.c_str());
}

void put_words(ObjectWriter& writer, std::span<const std::uint32_t> words) {
    for (const std::uint32_t word : words) {
        std::array<std::byte, 4> bytes;
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::byte>(word >> (24 - 8 * i));
        writer.put_bytes(bytes);
    }
}

} // namespace

StreamStatus open_stream(InputStream& stream, std::string_view path, SystemError& error) {
    stream.name = path;
    File file;
    FileStat stat;
    error = open_file(file, path, OpenMode::read);
    if (!failed(error))
        error = stat_open_file(file, stat);
    if (failed(error))
        return stream.status;
    std::array<std::byte, k_stream_trailer_size> end;
    std::size_t got = 0;
    const std::int64_t end_at = stat.size - static_cast<std::int64_t>(end.size());
    if (end_at < 0)
        return stream.status;
    error = read_at(file, end_at, end, got);
    Trailer trailer;
    if (failed(error) || got != end.size() ||
        !read_trailer(end, static_cast<std::uint64_t>(stat.size), trailer))
        return stream.status;
    const auto size = static_cast<std::size_t>(stat.size);
    stream.memory.reset(static_cast<std::byte*>(allocate(size)));
    if (stream.memory == nullptr)
        return stream.status;
    error = read_at(file, 0, {stream.memory.get(), size}, got);
    if (failed(error))
        return stream.status;
    return open_stream(stream, std::span<const std::byte>(stream.memory.get(), got), path);
}

StreamStatus open_stream(InputStream& stream, std::span<const std::byte> bytes,
                         std::string_view name) {
    stream.name = name;
    Trailer trailer;
    if (bytes.size() < k_stream_trailer_size ||
        !read_trailer(bytes.last(k_stream_trailer_size), bytes.size(), trailer))
        return stream.status;
    ObjectReader& reader = stream.reader;
    reader.start(bytes, stream.name.c_str(), trailer.object_count, trailer.class_count);
    if (!read_header(reader, trailer, stream.head))
        return stream.status = StreamStatus::bad_header;
    reader.move_to(0, trailer.header_at);
    const bool is_oldest = stream.head.version == 0;
    stream.sections = is_oldest ? 1 : trailer.sections;
    if (!is_oldest)
        read_path_record(stream);
    return stream.status = StreamStatus::good;
}

ObjectNumber read_all(InputStream& stream) {
    return stream.status == StreamStatus::good ? stream.reader.read_sections(stream.sections)
                                               : ObjectNumber::none;
}

void begin_stream(ObjectWriter& writer) {
    const StreamPathRecord& record = stream_path_record();
    writer.write_object(record.paths);
    writer.write_object(record.classes);
    writer.write_object(record.version);
}

bool end_stream(ObjectWriter& writer, const Poly_head& head) {
    writer.end_section();
    const std::uint32_t header_at = writer.position();
    writer.write_object(head);
    const std::uint32_t trailer_at = writer.position();
    const std::uint32_t words[] = {k_stream_magic,
                                   writer.object_count(),
                                   static_cast<std::uint32_t>(class_count()),
                                   writer.sections(),
                                   header_at,
                                   trailer_at};
    put_words(writer, words);
    return writer.flush();
}

} // namespace pellux
