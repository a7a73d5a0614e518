#include "tests/windows/toolkit/application.h"

#include "core/common/callback.h"
#include "core/os/loop.h"
#include "windows/toolkit/window.h"

#include <QApplication>

namespace pellux {
namespace {

struct Script {
    const std::function<void()>* run = nullptr;
    PostedCall call;
    EventHandler handler;
};

long on_task_event(void* context, Window window, const Event& event) {
    auto& script = from_context<Script>(context);
    if (event.type() == EventType::creation)
        post_call(script.call);
    const EventHandler& handler = script.handler;
    return handler.handle == nullptr ? 0 : handler.handle(handler.context, window, event);
}

} // namespace

void in_application(const std::function<void()>& run, const AppConfig& config,
                    EventHandler handler) {
    Script script{&run, {}, handler};
    script.call.context = &script;
    script.call.call = [](void* context) {
        process_events();
        (*from_context<Script>(context).run)();
        xvt_app_destroy();
    };
    xvt_app_create(config, {on_task_event, &script});
    cancel_call(script.call);
}

void process_events() {
    constexpr int k_turns_max = 100;
    for (int i = 0; i < k_turns_max; ++i) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::sendPostedEvents();
        if (run_turn(TurnWait::none) == TurnResult::idle && i > 2)
            break;
    }
}

} // namespace pellux
