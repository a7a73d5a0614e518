#pragma once

#include "core/os/loop.h"
#include "core/text/file_search.h"

#include <span>

namespace pellux {

class EditorWindow;

/// As many lines are found at most.
inline constexpr std::int64_t k_search_lines_max = 100'000;

/// What whoever searches is told, from the loop's turns.
struct SearchCalls {
    /// Lines of a file were found, in their order; a file may be told of several times.
    void (*found)(void* context, std::size_t file, std::span<const LineMatch> lines) = nullptr;
    void (*unreadable)(void* context, std::size_t file, SystemError error) = nullptr;
    /// A slice of the search is over, or all of it.
    void (*advanced)(void* context) = nullptr;
    void* context = nullptr;
};

struct SearchProgress {
    std::size_t files = 0;
    std::size_t done = 0;    ///< of them, also those that can't be read
    std::size_t matched = 0; ///< that have a match
    std::size_t unreadable = 0;
    std::int64_t matches = 0;
    std::int64_t lines = 0;
};

/// Searches files one after the other, a few milliseconds in each turn of the loop. Where an editor
/// holds a file its text is searched; it is begun anew when it changes or its editor closes
/// meanwhile. Ends by itself when it goes away, but must not from a call other than `advanced`.
class SearchRun {
public:
    explicit SearchRun(const SearchCalls& calls);
    ~SearchRun();
    SearchRun(const SearchRun&) = delete;
    SearchRun& operator=(const SearchRun&) = delete;

    /// `paths` are absolute. A search that runs is stopped.
    void start(Vector<String> paths, const SearchRules& rules);
    void stop();

    [[nodiscard]] bool is_running() const { return search_ != nullptr; }
    /// It has found as many lines as it may.
    [[nodiscard]] bool is_full() const { return progress_.lines >= k_search_lines_max; }
    [[nodiscard]] const SearchProgress& progress() const { return progress_; }

private:
    /// A file that an editor holds, as its path is now.
    struct EditedFile {
        EditorWindow* editor = nullptr;
        String path;
        FileStat stat;
    };

    void look_at_editors();
    void run_slice();
    void begin_file();
    void step();
    void check_edited();
    void leave_file();
    void end_file();
    void tell(std::span<const LineMatch> lines);
    void tell_unreadable(SystemError error);

    const SearchCalls calls_;
    PostedCall slice_;
    Owned<LineSearch> search_;
    Vector<String> paths_;
    SearchProgress progress_;
    Vector<EditedFile> edited_;
    bool is_in_file_ = false;
    bool has_match_ = false; ///< the present file
    File file_;
    EditorWindow* editor_ = nullptr; ///< that holds the present file
    std::uint64_t edits_ = 0;        ///< of its text, when its search began
    Vector<LineMatch> found_;        ///< not told of yet
};

} // namespace pellux
