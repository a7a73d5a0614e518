#include "windows/editor/editor_file.h"

#include "core/common/lexical_path.h"

namespace pellux {
namespace {

/// Takes note of what the file is now. That is nobody else's doing, also after a writing of ours
/// that failed: it must not be offered in the place of a good text.
void note_own(EditorFile& file) {
    const String path = path_of(file);
    file.is_unknown =
        failed(identify_file(view(path), file.identity)) ||
        (file.identity != FileIdentity{} && failed(sum_file(view(path), file.content)));
}

} // namespace

String path_of(const EditorFile& file) {
    return has_name(file) ? joined_path(view(file.directory), view(file.name)) : String();
}

void set_path(EditorFile& file, std::string_view path) {
    file.directory = directory_part(path);
    file.name = file_name_part(path);
}

FileLoad read_file(EditorFile& file, TextDocument& document) {
    constexpr int k_tries = 3;
    const String path = path_of(file);
    for (int i = 0; i < k_tries; ++i) {
        FileIdentity before;
        FileIdentity after;
        if (const SystemError error = identify_file(view(path), before); failed(error))
            return {.error = error};
        const TextLoad load = load_text(document, view(path), user_encoding());
        if (failed(load.error))
            return {.error = load.error};
        if (!failed(identify_file(view(path), after)) && after == before) {
            file.identity = before;
            file.content = load.content;
            file.refused = {};
            return {};
        }
        erase_bytes(document, 0, text_size(document));
    }
    return {.keeps_changing = true};
}

FileLoad read_copy(EditorFile& file, TextDocument& document, std::string_view copy) {
    const TextLoad load = load_text(document, copy, user_encoding());
    if (failed(load.error))
        return {.error = load.error};
    note_own(file);
    return {};
}

bool has_other_contents(EditorFile& file) {
    const String path = path_of(file);
    FileIdentity now;
    if (file.is_unknown)
        note_own(file);
    if (!has_name(file) || file.is_unknown || failed(identify_file(view(path), now)) ||
        now == file.identity || now == FileIdentity{})
        return false;
    ContentSum content;
    if (now.size != file.identity.size || failed(sum_file(view(path), content)) ||
        content != file.content)
        return true;
    file.identity = now;
    return false;
}

SystemError write_file(EditorFile& file, TextDocument& document, SafeWriter& writer) {
    const String path = path_of(file);
    const SystemError error = save_text(document, view(path), writer, &file.content);
    file.refused = {};
    if (failed(error) || failed(identify_file(view(path), file.identity)))
        note_own(file);
    return error;
}

} // namespace pellux
