#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object.h"

namespace pellux {

// The classes that every stream holds by itself.

/// Tells what program wrote a stream.
class Poly_head : public Object {
public:
    static constexpr std::int32_t k_version = 1;

    std::int32_t version = k_version; ///< as read; the writer's is always `k_version`
    NullableText program_name;
    NullableText program_version;
    NullableText extra;
    std::int32_t time_stamp = 0; ///< seconds since 1970-01-01; version 0 has none

    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
    void print(TextSink stream) const override;
};

/// Paths that go with a stream, relative to an installation where they lie in it.
class Path_record : public Object {
public:
    /// The environment variable that names the installation; told by the file, never looked up.
    NullableText variable;
    Vector<NullableText> paths;

    Path_record();
    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

/// One number that a reader compares with its own.
class Stream_stamp : public Object {
public:
    std::int32_t stamp = 0;

    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

/// Changes when the fields of a class in this header do.
class Class_stamp : public Stream_stamp {
public:
    Class_stamp() { stamp = 1; }
    [[nodiscard]] const ClassRecord& class_record() const override;
};

/// Changes when the encoding of the stream does.
class Version_stamp : public Stream_stamp {
public:
    Version_stamp() { stamp = 1; }
    [[nodiscard]] const ClassRecord& class_record() const override;
};

/// The process-wide path record: the first three objects of every stream.
struct StreamPathRecord {
    Path_record paths;
    Class_stamp classes;
    Version_stamp version;
};
[[nodiscard]] StreamPathRecord& stream_path_record();

/// How a path is stored: "$$REL$$" and the rest when it lies below the directory that
/// `VELMORA_DIR` names, else as it is.
[[nodiscard]] String stored_path(std::string_view path);
[[nodiscard]] String loaded_path(std::string_view stored);

void register_stream_classes();

} // namespace pellux
