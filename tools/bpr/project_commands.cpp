#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "core/project/messages.h"
#include "tools/bpr/commands.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_json.h"

namespace pellux {
namespace {

/// Bytes of a JSON document; a project of 10,000 sources takes less than 10 MB.
constexpr std::size_t k_json_max = std::size_t{256} << 20;

/// The project of a JSON file, whose text, the larger, is gone then; null after a message.
Owned<Project> read_json_project(const char* path, ProjectHeader& header) {
    String text;
    SystemError problem{};
    switch (read_text_file(path, k_json_max, text, problem)) {
    case TextFileStatus::read:
        return project_from_json(view(text), path, header);
    case TextFileStatus::too_large:
        tell(msg_too_large, path);
        return nullptr;
    case TextFileStatus::failed:
        tell(msg_bpr_cannot_read, path, error_text(problem).c_str());
        return nullptr;
    }
    return nullptr;
}

bool is_same_file(std::string_view one, std::string_view other) {
    FileStat first;
    FileStat second;
    return !failed(stat_file(one, first)) && !failed(stat_file(other, second)) &&
           first.device == second.device && first.inode == second.inode;
}

} // namespace

int show_project(const char* file) {
    ProjectHeader header;
    const Owned<Project> project = read_project(file, header);
    if (project == nullptr)
        return k_status_unusable;
    const String text = project_to_json(*project, header);
    return status_after_output(write_handle(standard_output(), std::as_bytes(std::span(text))));
}

int make_project(const char* json_file, const char* file) {
    if (is_same_file(json_file, file)) {
        tell(msg_same_file, file, json_file);
        return k_status_unusable;
    }
    ProjectHeader header;
    const Owned<Project> project = read_json_project(json_file, header);
    if (project == nullptr || !tell_write_result(write_project_as(*project, file, header), file))
        return k_status_unusable;
    return k_status_done;
}

int status_after_output(SystemError error) {
    if (!failed(error))
        return k_status_done;
    tell(msg_bpr_cannot_write, "standard output", error_text(error).c_str());
    return k_status_unusable;
}

bool tell_write_result(const ProjectWriteResult& result, std::string_view path) {
    const String name(path);
    if (failed(result.error))
        tell(msg_bpr_cannot_write, name.c_str(), error_text(result.error).c_str());
    if (!result.old_contents.empty())
        tell(msg_old_contents, name.c_str(), result.old_contents.c_str());
    if (result.attributes_lost)
        tell(msg_attributes_lost, name.c_str());
    if (failed(result.directory_error))
        tell(msg_directory_behind, name.c_str(), error_text(result.directory_error).c_str());
    return !failed(result.error);
}

} // namespace pellux
