#pragma once

#include "core/launch/spawner.h"
#include "core/os/loop.h"
#include "core/project/records.h"
#include "windows/compile/compile_log.h"
#include "windows/compile/compile_progress.h"
#include "windows/compile/last_compiles.h"
#include "windows/textview/text_window.h"

#include <optional>
#include <string_view>

namespace pellux {

/// What the child has sent, until it is shown.
struct CompileEvent {
    String text;
    bool has_text = false;
    int done = 0;
    int status = 0; ///< of one that is done
};

/// One run of the compiler, or of a program that simulates: the command, what it says line by line,
/// and how it ended. One window for each project, made by `open_compile_window`.
class CompileWindow final : public TextWindow {
public:
    explicit CompileWindow(Window of_project) : project(of_project), log_(document()) {}

    const Window project;

    /// For the window that has been made.
    void set_up();
    /// Runs the program `argv[0]` in the place of what is there; `title` is the window's without
    /// the words that a program runs. With `make_sim_file` a success is followed by the simulator
    /// of the project, if it wants one.
    void startCompile(const Vector<String>& argv, bool make_sim_file, std::string_view title,
                      RunKind kind = RunKind::compile);
    /// Asks whether to halt the child that runs; false when it goes on.
    bool halt();
    void close();
    [[nodiscard]] bool is_running() const { return spawner_ != nullptr && spawner_->running(); }
    /// Does what runs, or ran last, simulate?
    [[nodiscard]] bool is_simulation() const { return kind_ == RunKind::simulation; }
    [[nodiscard]] const CompileLog& log() const { return log_; }
    /// Where the last simulation has left one; empty: nowhere.
    [[nodiscard]] const String& waveform() const { return waveform_; }

    void next_error();
    void previous_error();
    void locate_error();
    /// Goes on to a message, and to its place in an editor: after a run at first to the chosen one,
    /// then to the next or previous one. False when there is none at all.
    bool go_to_next(bool backwards);
    void save_text();
    /// The project keeps where the window stands, where its user has moved it, and its font.
    void keep_place();

    void lay_out() override;
    void hook() override;
    void zoom(int steps) override;

protected:
    long on_event(const Event& event) override;
    bool take_key(const CharacterEvent& key) override;
    bool take_press(const PointerDownEvent& down) override;

private:
    static void draw_segment(void* context, TextView& view, const TextSegment& segment);

    // What runs.
    static void post(void* context, const char* text, int done, int status);
    void tick();
    void drain();
    void show(const CompileEvent& event);
    void append(std::string_view text);
    void begin_file(std::string_view name);
    void end_file();
    void finish(int status);
    void note_end(bool is_successful);
    void find_waveform();
    bool begin_simulation();
    /// False after the user was told; `words` is not empty.
    bool launch(const Vector<String>& words);
    void stop_clock();

    // What is shown.
    void set_status(String text);
    void show_progress();
    void show_end(bool is_successful);
    void show_title();
    void show_state();
    void show_navigation();
    void sync();
    void select_line(std::int64_t line);
    void step(bool backwards);
    void run_command(int tag);
    void choose_font();

    CompileLog log_;
    Owned<Spawner> spawner_;
    Vector<CompileEvent> queue_;
    PostedCall drain_;
    String title_;
    RunKind kind_ = RunKind::compile;
    String start_time_;
    String now_time_;
    std::int64_t start_s_ = 0;
    String program_;      ///< that runs, or ran last
    String current_file_; ///< as the compiler named it; empty: none of the project's
    std::int64_t file_start_s_ = 0;
    CompileProgress progress_;
    bool is_simulating_ = false;
    bool makes_sim_file_ = false;
    String waveform_;
    std::int64_t last_ms_ = 0; ///< that the last compile took
    TimerId timer_ = TimerId::none;
    bool is_elsewhere_ = false;    ///< the user has gone to another window since the run began
    bool has_walked_ = false;      ///< or has chosen a line here
    std::int64_t fresh_line_ = -1; ///< with a message that was chosen and not gone to yet
    std::optional<unsigned> shown_navigation_; ///< what can be done, by bits
    Rect placed_;                  ///< where it stood at first, its user not having moved it
    std::optional<Font> own_font_; ///< chosen here
};

/// The file of a project's waveform, from its directory; the project has a top design.
[[nodiscard]] String waveform_name(const Project& project);

/// Makes the resources of the windows known; there is none.
void register_compile_windows();
/// The project's window, in front; null after the user was told that there is none.
[[nodiscard]] CompileWindow* open_compile_window(Window project);
/// Ends what runs, without a question: the project goes.
void destroy_compile_window(Window project);
/// Does a compile of the project, or its simulator, run?
[[nodiscard]] bool is_compiling(Window project);
/// Null where the project has none.
[[nodiscard]] CompileWindow* find_compile_window(Window project);

} // namespace pellux
