#include "tools/driver/ghdl/ghdl_call.h"

#include "core/common/callback.h"
#include "core/diagnostics/message.h"
#include "core/os/argument_vector.h"
#include "core/os/files.h"
#include "core/os/loop.h"

#include <array>
#include <span>

namespace pellux {
namespace {

constexpr std::array k_ghdl_names{"ghdl-mcode", "ghdl"};
constexpr std::size_t k_line_max = 65536;

struct Call {
    const LineReceiver& receiver;
    OwnedHandle output;
    DescriptorWatch watch;
    String partial;      ///< a line without its end yet
    bool at_end = false; ///< of the output
    bool ended = false;  ///< the process
    ProcessEnd end;
};

void take_bytes(Call& call, std::string_view bytes) {
    for (const char c : bytes) {
        if (c == '\n' || call.partial.size() == k_line_max) {
            call.receiver.line(call.receiver.context, view(call.partial));
            call.partial.clear();
        }
        if (c != '\n')
            call.partial += c == '\0' || c == '\r' ? ' ' : c;
    }
}

/// Reads what is there; true while there may be more at once.
bool read_piece(Call& call) {
    std::array<std::byte, 16384> piece;
    std::size_t got = 0;
    bool would_wait = false;
    const SystemError error = read_handle(call.output.get(), piece, got, would_wait);
    if (!failed(error) && would_wait)
        return false;
    if (failed(error) || got == 0) {
        call.at_end = true;
        unwatch_descriptor(call.watch);
        return false;
    }
    take_bytes(call, {reinterpret_cast<const char*>(piece.data()), got});
    call.receiver.piece_read(call.receiver.context);
    return true;
}

void on_readable(void* context, bool, bool) {
    static_cast<void>(read_piece(from_context<Call>(context)));
}

void on_ended(void* context, ProcessEnd end) {
    auto& call = from_context<Call>(context);
    call.ended = true;
    call.end = end;
}

SystemError start(Call& call, Process& process, const char* program, const Vector<String>& words,
                  std::int64_t processor_seconds_max) {
    OwnedHandle write_end;
    SystemError error = make_pipe(call.output, write_end);
    if (failed(error))
        return error;
    const auto arguments = argument_vector<Vector<const char*>>(words);
    process.ended = on_ended;
    process.context = &call;
    ProcessRequest request;
    request.program = program;
    request.arguments = arguments.data();
    request.output = write_end.get();
    request.errors = write_end.get();
    request.processor_seconds_max = processor_seconds_max;
    return start_process(process, request);
}

} // namespace

bool find_ghdl(PathBuffer& path) {
    for (const char* name : k_ghdl_names) {
        if (find_program(name, path))
            return true;
    }
    return false;
}

Digest settings_digest(VhdlStandard standard, std::string_view ghdl, const VhdlRules& rules) {
    FileStat stat;
    static_cast<void>(stat_file(ghdl, stat));
    String text =
        format_text("%d %s %lld %lld", static_cast<int>(standard), String(ghdl).c_str(),
                    static_cast<long long>(stat.size), static_cast<long long>(stat.modified_ns));
    Vector<String> options;
    add_rule_options(rules, options);
    for (const String& option : options)
        (text += ' ') += option;
    return digest_of(view(text));
}

GhdlEnd run_ghdl(Process& process, const char* program, const Vector<String>& words,
                 const LineReceiver& receiver, std::int64_t processor_seconds_max) {
    Call call{receiver, {}, {}, {}, false, false, {}};
    GhdlEnd result;
    result.not_started = start(call, process, program, words, processor_seconds_max);
    if (failed(result.not_started))
        return result;
    set_non_blocking(call.output.get());
    call.watch.handle = call.output.get();
    call.watch.ready = on_readable;
    call.watch.context = &call;
    watch_descriptor(call.watch);
    while (!call.ended) {
        if (!result.stopped && receiver.stop(receiver.context)) {
            result.stopped = true;
            kill_process(process);
        }
        const bool has_worked = receiver.work != nullptr && receiver.work(receiver.context);
        run_turn(has_worked ? TurnWait::none : TurnWait::until_event);
    }
    // The end may be told before the last output is read; a grandchild may hold the pipe open.
    while (!call.at_end && read_piece(call)) {
    }
    unwatch_descriptor(call.watch);
    if (!call.partial.empty())
        receiver.line(receiver.context, view(call.partial));
    result.process = call.end;
    return result;
}

Vector<String> ghdl_answer(Process& process, const char* program, const char* word,
                           bool (*stop)(void* context), void* context) {
    struct Answer {
        Vector<String> lines;
        bool (*stop)(void* context);
        void* context;
    };
    Answer answer{{}, stop, context};
    const LineReceiver receiver{
        .line = [](void* to,
                   std::string_view line) { from_context<Answer>(to).lines.emplace_back(line); },
        .piece_read = [](void*) {},
        .stop =
            [](void* to) {
                const auto& asked = from_context<Answer>(to);
                return asked.stop(asked.context);
            },
        .context = &answer,
    };
    const GhdlEnd end = run_ghdl(process, program, {String(program), String(word)}, receiver);
    return failed(end.not_started) ? Vector<String>() : answer.lines;
}

} // namespace pellux
