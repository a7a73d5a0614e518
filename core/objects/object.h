#pragma once

#include "core/common/containers.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

class Object;
class ObjectReader;
class ObjectWriter;

/// What the program knows of one persistent class.
struct ClassRecord {
    const char* name = nullptr;
    std::uint16_t number = 0; ///< unique in the program, below `k_class_limit`
    Owned<Object> (*make)() = nullptr;
};

inline constexpr std::size_t k_class_limit = 64;
inline constexpr std::size_t k_class_name_max = 100;

/// Root of the persistent classes.
class Object {
public:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
    virtual ~Object() = default;

    [[nodiscard]] virtual const ClassRecord& class_record() const;
    virtual void write_poly(ObjectWriter& writer) const;
    /// Reading no byte at all is damage.
    virtual void read_poly(ObjectReader& reader);
    /// Called once all objects are there, to turn object numbers into pointers.
    virtual void link(ObjectReader& reader);
    /// For listings.
    virtual void print(TextSink stream) const;
};

/// Enters classes into the process-wide table; entering the same record again does nothing.
void register_classes(std::span<const ClassRecord* const> records);
/// Null when there is none.
[[nodiscard]] const ClassRecord* find_class(std::string_view name);
/// Size of the table: one more than its highest class number.
[[nodiscard]] std::size_t class_count();

/// Replaces the class that a stream names by another one, in both directions.
struct ClassRemap {
    const ClassRecord* from = nullptr;
    const ClassRecord* to = nullptr;
};

} // namespace pellux
