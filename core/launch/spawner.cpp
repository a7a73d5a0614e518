#include "core/launch/spawner.h"

#include "core/common/callback.h"
#include "core/launch/command_line.h"
#include "core/launch/messages.h"
#include "core/launch/response_file.h"
#include "core/os/argument_vector.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_first_poke_ms = 20000;
constexpr std::int64_t k_silence_ms = 5000;
constexpr std::int64_t k_close_grace_ms = 2000;

constinit Spawner* g_spawners = nullptr;

/// A program without a channel that has a response file; ends itself.
struct Reader {
    Process process;
    File response;
};

/// Puts the response file of `line`, if it has one, where `response` holds it, and starts the
/// program; `process` null starts it detached.
LaunchResult start(CommandLine& line, File& response, Process* process, bool own_session) {
    if (line.has_response) {
        String name;
        const SystemError error = put_response_file(view(line.response), response, name);
        if (failed(error)) {
            PathBuffer path;
            const bool is_known = !failed(current_directory(path)) && path.join(k_response_file);
            return {LaunchStatus::no_response_file, error,
                    String(is_known ? path.view() : k_response_file)};
        }
        line.words.back() = "@" + name;
    }
    const auto words = argument_vector<Vector<const char*>>(line.words);
    const ProcessRequest request{
        .program = words.front(), .arguments = words.data(), .own_session = own_session};
    const SystemError error =
        process == nullptr ? start_detached(request) : start_process(*process, request);
    if (!failed(error))
        return {};
    return {LaunchStatus::cannot_run, error, line.words.front()};
}

} // namespace

Spawner::Spawner(Callback callback) : callback_(callback) {
    open();
}

Spawner::Spawner(Method method, void* context) : method_(method), context_(context) {
    open();
}

void Spawner::open() {
    watchdog_.expired = [](void* self) { from_context<Spawner>(self).on_watchdog(); };
    watchdog_.context = this;
    grace_.expired = [](void* self) { from_context<Spawner>(self).on_grace_over(); };
    grace_.context = this;
    process_.ended = [](void* self, ProcessEnd end) {
        from_context<Spawner>(self).end_.process = end;
        from_context<Spawner>(self).complete_if_gone();
    };
    process_.context = this;

    next_ = std::exchange(g_spawners, this);
    server_ = make_owned<ChannelServer>();
    ChannelServerEvents& events = server_->events;
    // A topic may name any spawner of the process, whatever service it came in by.
    events.connect = [](void*, std::uint64_t connection, std::string_view topic) {
        Spawner* named = find(topic);
        if (named == nullptr)
            return false;
        named->links_.push_back({connection, named->launch_of(connection)});
        if (named->links_.back().launch == named->launch_)
            named->response_ = {};
        return true;
    };
    events.poke = [](void*, std::uint64_t connection, std::string_view topic, std::string_view item,
                     std::span<const std::byte> data) {
        Spawner* named = find(topic);
        if (named == nullptr)
            return std::uint16_t{0};
        named->on_poke(connection, item, data);
        return k_poke_taken;
    };
    events.closed = [](void*, std::uint64_t connection) {
        Spawner* named = find(connection);
        if (named == nullptr)
            return;
        std::erase_if(named->links_,
                      [=](const Link& link) { return link.connection == connection; });
        named->complete_if_gone();
    };
    no_channel_ = open_channel_server(*server_);
}

Spawner::~Spawner() {
    stop_timer(watchdog_);
    stop_timer(grace_);
    Spawner** place = &g_spawners;
    while (*place != this)
        place = &(*place)->next_;
    *place = next_;
    close_channel_server(*server_);
    end_process_later(process_, k_close_grace_ms);
}

Spawner* Spawner::find(std::string_view topic) {
    ChannelAddress handle = 0;
    if (!leading_number(topic, handle) || handle == 0)
        return nullptr;
    Spawner* spawner = g_spawners;
    while (spawner != nullptr && spawner->handle() != handle)
        spawner = spawner->next_;
    return spawner;
}

Spawner* Spawner::find(std::uint64_t connection) {
    for (Spawner* spawner = g_spawners; spawner != nullptr; spawner = spawner->next_)
        for (const Link& link : spawner->links_)
            if (link.connection == connection)
                return spawner;
    return nullptr;
}

LaunchResult Spawner::launch(const char* program, const char* const* argv) {
    if (running_)
        return {LaunchStatus::still_running, SystemError::none, String(program)};
    if (handle() == 0)
        return {LaunchStatus::no_channel, no_channel_, String(channel_directory(*server_))};
    if (child_ != 0)
        earlier_children_.push_back(child_);
    last_earlier_connection_ = accept_channel_connections(*server_);
    ++launch_;
    status_ = 0;
    child_window_ = 0;
    end_ = {};
    CommandLine line = compose_command_line(program, handle(), argv);
    LaunchResult result = start(line, response_, &process_, true);
    running_ = static_cast<bool>(result);
    child_ = process_.id;
    // A number may be used again.
    std::erase(earlier_children_, child_);
    if (running_)
        start_timer(watchdog_, k_first_poke_ms);
    else
        response_ = {};
    return result;
}

LaunchResult Spawner::run(const char* program, const char* const* argv) {
    CommandLine line = compose_command_line(program, 0, argv);
    File none;
    if (!line.has_response)
        return start(line, none, nullptr, false);
    Owned<Reader> reader = make_owned<Reader>();
    reader->process.context = reader.get();
    reader->process.ended = [](void* self, ProcessEnd) {
        const Owned<Reader> ended(&from_context<Reader>(self));
    };
    LaunchResult result = start(line, reader->response, &reader->process, false);
    if (result)
        static_cast<void>(reader.release());
    return result;
}

void Spawner::halt() {
    if (!running_)
        return;
    if (child_window_ == 0 && process_.id != 0) {
        kill_process(process_);
        return;
    }
    for (const Link& link : links_)
        if (link.launch == launch_)
            send_channel_message(link.connection, k_message_close, 0);
    if (!grace_.active)
        start_timer(grace_, k_close_grace_ms);
}

void Spawner::wait_until_connected(std::int64_t timeout_ms) {
    if (running_ && child_window_ == 0)
        wait_for_connection(*server_, timeout_ms);
}

int Spawner::wait() {
    while (running_)
        if (run_turn(TurnWait::until_event) == TurnResult::quit)
            return -1;
    return status_;
}

bool Spawner::has_live_link() const {
    return std::any_of(links_.begin(), links_.end(),
                       [this](const Link& link) { return link.launch == launch_; });
}

std::uint64_t Spawner::launch_of(std::uint64_t connection) const {
    const std::int64_t peer = channel_peer_process(connection);
    const std::int64_t session = process_session(peer);
    const bool earlier =
        connection <= last_earlier_connection_ ||
        std::any_of(earlier_children_.begin(), earlier_children_.end(),
                    [=](std::int64_t child) { return child == peer || child == session; });
    return earlier ? 0 : launch_;
}

void Spawner::forward(const char* text, int done, int status) {
    if (callback_ != nullptr)
        callback_(text, done, status);
    else if (method_ != nullptr)
        method_(context_, text, done, status);
}

void Spawner::complete(int status) {
    stop_timer(watchdog_);
    stop_timer(grace_);
    response_ = {};
    status_ = status;
    running_ = false;
    end_.has_spoken = child_window_ != 0;
    end_process_later(process_, k_close_grace_ms);
    forward(nullptr, 1, status);
}

void Spawner::on_poke(std::uint64_t connection, std::string_view item,
                      std::span<const std::byte> data) {
    const bool of_this_launch =
        std::any_of(links_.begin(), links_.end(), [=, this](const Link& link) {
            return link.connection == connection && link.launch == launch_;
        });
    if (!of_this_launch)
        return;
    if (std::uint64_t id = 0; leading_number(item, id))
        child_window_ = static_cast<std::int64_t>(id);
    if (running_)
        start_timer(watchdog_, k_silence_ms);
    if (data.empty())
        return;
    const char kind = static_cast<char>(data.front());
    data = data.subspan(1);
    if (kind == '0') {
        std::array<char, k_channel_poke_max + 1> text;
        std::memcpy(text.data(), data.data(), data.size());
        text[data.size()] = '\0';
        forward(text.data(), 0, 0);
    } else if (kind == '1' && data.size() >= 4 && running_) {
        std::uint32_t status = 0;
        for (int i = 3; i >= 0; --i)
            status =
                status << 8 | std::to_integer<std::uint32_t>(data[static_cast<std::size_t>(i)]);
        send_channel_message(connection, k_message_completion_seen, 0);
        end_.has_told = true;
        complete(static_cast<int>(status));
    }
}

bool Spawner::child_is_there() const {
    if (!process_exists(child_window_))
        return false;
    // A grandchild that has left the session and lost its parent is known by its connection alone.
    return process_session(child_window_) == child_ ||
           is_descendant_or_self(process_.id, child_window_) ||
           std::any_of(links_.begin(), links_.end(), [this](const Link& link) {
               return link.launch == launch_ &&
                      channel_peer_process(link.connection) == child_window_;
           });
}

void Spawner::on_watchdog() {
    if (!running_) {
        stop_timer(watchdog_);
        return;
    }
    if (child_is_there())
        return;
    end_process_later(process_, 0);
    complete(1);
}

/// The child was asked to close and has not.
void Spawner::on_grace_over() {
    kill_process(process_);
    if (process_.id != 0)
        return;
    stop_timer(grace_);
    // What speaks is not our child but something that it left behind.
    for (const Link& link : std::exchange(links_, {}))
        drop_channel_connection(link.connection);
    if (running_)
        complete(1);
}

/// The child has ended, or something that it left behind has stopped to speak.
void Spawner::complete_if_gone() {
    if (!running_ || process_.id != 0)
        return;
    // What the child wrote last may still be on its way; reading it may complete the launch, start
    // another one, or end this spawner.
    const std::uint64_t ended_launch = launch_;
    const ChannelAddress own = handle();
    drain_channel_server(*server_);
    for (const Spawner* spawner = g_spawners; spawner != nullptr; spawner = spawner->next_)
        if (spawner == this && handle() == own && launch_ == ended_launch && running_ &&
            process_.id == 0 && !has_live_link()) {
            complete(1);
            return;
        }
}

String end_cause_text(const SpawnerEnd& end, const char* program) {
    if (end.has_told)
        return {};
    if (!end.process)
        return format_message(msg_program_given_up, program);
    if (end.process->by_signal)
        return format_message(msg_program_crashed, program, end.process->code);
    return format_message(end.has_spoken ? msg_program_broke_off : msg_program_never_spoke, program,
                          end.process->code);
}

} // namespace pellux
