#pragma once

#include "core/objects/object_reader.h"
#include "core/objects/object_writer.h"
#include "core/objects/stream_records.h"
#include "core/os/system_error.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace pellux {

// Whole object streams: what stands around the objects. docs/formats.md has the bytes.

enum class StreamStatus { good = 0, not_a_stream = 1, bad_header = 2 };

/// One stream that is read; `open_stream` fills it once.
struct InputStream {
    struct Release {
        void operator()(std::byte* block) const { release(block); }
    };

    StreamStatus status = StreamStatus::not_a_stream;
    Poly_head head;
    String name; ///< what messages call it
    std::uint32_t sections = 0;
    std::unique_ptr<std::byte, Release> memory; ///< a file's bytes
    ObjectReader reader;

    explicit InputStream(std::span<const ClassRemap> remap = {}) : reader(remap) {}
};

/// Reads the file into memory and opens it; `error` tells when it cannot be read. What is no stream
/// by its last bytes takes no memory.
StreamStatus open_stream(InputStream& stream, std::string_view path, SystemError& error);
/// `bytes` are borrowed.
StreamStatus open_stream(InputStream& stream, std::span<const std::byte> bytes,
                         std::string_view name);
/// The first object behind the path record, after all of them have been read and linked; `none`
/// after damage.
[[nodiscard]] ObjectNumber read_all(InputStream& stream);

/// Writes the path record, which stands before all other objects.
void begin_stream(ObjectWriter& writer);
/// Ends the section and adds header and trailer; false when anything failed.
[[nodiscard]] bool end_stream(ObjectWriter& writer, const Poly_head& head);

} // namespace pellux
