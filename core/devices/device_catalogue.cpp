#include "core/devices/device_catalogue.h"

#include "core/common/blanks.h"
#include "core/common/installed_file.h"
#include "core/devices/messages.h"
#include "core/diagnostics/reporter.h"

#include <cstring>

namespace pellux {
namespace {

constexpr const char* k_file_name = "devices.dat";

template <typename... Arguments>
[[noreturn]] void give_up(Message<Arguments...>& message,
                          std::type_identity_t<Arguments>... arguments) {
    // A text that only the message catalogue has may be missing; the line still names the file.
    if (*message.text() == '\0')
        reporter().current_source = k_file_name;
    abort(message.number(), message, arguments...);
}

/// Of a status that is no fault, whether it is `done`; any other ends the program unless `quiet`.
bool answer(CatalogueStatus status, bool quiet, const char* line = "") {
    if (quiet)
        return status == CatalogueStatus::done;
    switch (status) {
    case CatalogueStatus::done:
        return true;
    case CatalogueStatus::at_end:
        return false;
    case CatalogueStatus::no_file:
        give_up(msg_catalogue_no_file);
    case CatalogueStatus::no_index:
        give_up(msg_catalogue_no_index);
    case CatalogueStatus::listed_twice:
        give_up(msg_catalogue_listed_twice);
    case CatalogueStatus::missing:
        give_up(msg_catalogue_missing);
    case CatalogueStatus::line_too_long:
        give_up(msg_catalogue_long_line, line);
    case CatalogueStatus::no_block:
        give_up(msg_catalogue_no_block);
    case CatalogueStatus::no_block_end:
        give_up(msg_catalogue_no_block_end);
    case CatalogueStatus::no_comma:
        give_up(msg_catalogue_no_comma);
    case CatalogueStatus::bad_entry:
        give_up(msg_catalogue_bad_entry);
    case CatalogueStatus::too_deep:
        give_up(msg_catalogue_too_deep);
    }
    return false;
}

bool answer_text(CatalogueStatus status, CatalogueLine& buffer, bool raw) {
    if (!answer(status, false, buffer.text.data()))
        return false;
    if (!raw) {
        const std::string_view trimmed = trim_blanks(buffer.view());
        std::memmove(buffer.text.data(), trimmed.data(), trimmed.size());
        buffer.length = trimmed.size();
        buffer.text[buffer.length] = '\0';
    }
    return true;
}

} // namespace

CatalogueReader& catalogue_reader() {
    static CatalogueReader s_reader;
    return s_reader;
}

bool open(CatalogueReader& reader, bool quiet) {
    if (reader.file)
        return true;
    PathBuffer path;
    return answer(find_installed_file(k_file_name, path) ? open_catalogue(reader, path.view())
                                                         : CatalogueStatus::no_file,
                  quiet);
}

bool seekSection(CatalogueReader& reader, std::string_view name, bool quiet) {
    return answer(find_section(reader, name), quiet);
}

bool enterBlock(CatalogueReader& reader, std::string_view name, bool quiet) {
    CatalogueLine line;
    return answer(find_block(reader, name, line), quiet, line.text.data());
}

bool leaveBlock(CatalogueReader& reader, bool quiet) {
    return answer(close_range(reader), quiet);
}

bool atEnd(CatalogueReader& reader) {
    return is_at_end(reader);
}

bool readLine(CatalogueReader& reader, CatalogueLine& buffer, bool raw) {
    return answer_text(next_line(reader, buffer), buffer, raw);
}

bool nextIndexName(CatalogueReader& reader, CatalogueLine& buffer, bool raw) {
    return answer_text(next_device_name(reader, buffer), buffer, raw);
}

} // namespace pellux
