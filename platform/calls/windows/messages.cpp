#include "calls/windows/messages.h"

#include "calls/run/session.h"

#include <functional>

namespace platform {
namespace {

LRESULT call_procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    WindowKind kind{};
    {
        const RunLock lock = run_threads().lock();
        const Window* window = window_model().find(handle);
        if (window == nullptr) {
            set_last_error(ERROR_INVALID_WINDOW_HANDLE);
            return 0;
        }
        kind = window->kind;
        window_model().changed = true;
    }
    switch (kind) {
    case WindowKind::dialog:
        return dialog_procedure(handle, message, wparam, lparam);
    case WindowKind::button:
        return button_procedure(handle, message, wparam, lparam);
    case WindowKind::edit:
        return edit_procedure(handle, message, wparam, lparam);
    case WindowKind::list:
        return list_procedure(handle, message, wparam, lparam);
    default:
        return default_procedure(handle, message, wparam, lparam);
    }
}

LRESULT send_to_main_thread(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    RunLock lock = run_threads().lock();
    if (window_model().find(window) == nullptr) {
        set_last_error(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    const auto sent = std::make_shared<SentMessage>(SentMessage{window, message, wparam, lparam});
    window_model().sent.push_back(sent);
    run_threads().wake();
    run_threads().wait(lock, [&] { return sent->done || run_threads().main_left(); });
    std::erase(window_model().sent, sent);
    return sent->done ? sent->result : 0;
}

// Serves what other threads have sent. True when there was something.
bool serve_sent(RunLock& lock) {
    bool served = false;
    while (!window_model().sent.empty()) {
        const std::shared_ptr<SentMessage> sent = window_model().sent.front();
        window_model().sent.pop_front();
        lock.unlock();
        const LRESULT result = call_procedure(sent->window, sent->message, sent->wparam, sent->lparam);
        lock.lock();
        sent->result = result;
        sent->done = true;
        served = true;
        run_threads().wake();
    }
    return served;
}

// Input reaches only what a person could see and use at this moment. A click raises its dialog, and the
// cursor is asked about first.
bool accept_input(RunLock& lock, const MSG& message) {
    Window* window = window_model().find(message.hwnd);
    if (window == nullptr || !window_model().usable(*window))
        return false;
    if (message.message != WM_LBUTTONDOWN && message.message != WM_LBUTTONUP)
        return true;
    window_model().raise(window->parent != nullptr ? window->parent : window->handle);
    lock.unlock();
    call_procedure(message.hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(message.hwnd),
                   MAKELPARAM(HTCLIENT, message.message));
    lock.lock();
    return true;
}

bool pop_posted(RunLock& lock, MSG& message) {
    while (!window_model().posted.empty()) {
        const PostedMessage entry = window_model().posted.front();
        window_model().posted.pop_front();
        if (entry.input && !accept_input(lock, entry.message))
            continue;
        message = entry.message;
        window_model().changed = true;
        window_model().fruitless_acts = 0;
        return true;
    }
    return false;
}

MSG quit_message() {
    MSG message = {};
    message.message = WM_QUIT;
    message.wParam = static_cast<WPARAM>(window_model().exit_code);
    message.time = session().clock.ticks();
    return message;
}

// The user has left: the layer closes the topmost dialog that can be closed. One that stays open when it is
// told to close, because its Cancel is greyed, isn't that dialog, so the next time the one below has its
// turn.
void close_topmost(RunLock& lock, const Call& call) {
    constexpr unsigned most_closings = 50;
    WindowModel& model = window_model();
    std::vector<HWND> usable; // the topmost first
    for (auto dialog = model.dialogs.rbegin(); dialog != model.dialogs.rend(); ++dialog)
        if (model.usable(*model.find(*dialog)))
            usable.push_back(*dialog);
    if (usable.empty())
        call.refuse("the program waits for input for ever");
    const HWND chosen = usable[model.closings % usable.size()];
    if (++model.closings > most_closings)
        call.refuse("dialog " + std::to_string(model.find(chosen)->id) + " doesn't close");
    lock.unlock();
    post_message(chosen, WM_SYSCOMMAND, SC_CLOSE, 0, true);
    lock.lock();
}

// Nothing is left to do but to wait for the user. Called with the lock, which it lets go meanwhile.
void ask_user(RunLock& lock, const Call& call) {
    constexpr unsigned most_fruitless_acts = 1000;
    if (++window_model().fruitless_acts > most_fruitless_acts)
        call.refuse("the user acts without any effect");
    lock.unlock();
    const bool acted = session().user.act();
    lock.lock();
    if (acted)
        window_model().closings = 0;
    else if (window_model().posted.empty() && window_model().sent.empty() && !run_threads().others_live())
        close_topmost(lock, call);
}

} // namespace

void require_main_thread(const Call& call) {
    if (current_thread_number() != 0)
        call.refuse("only the main thread's windows and messages are modelled");
}

LRESULT send_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    return current_thread_number() == 0 ? call_procedure(window, message, wparam, lparam)
                                        : send_to_main_thread(window, message, wparam, lparam);
}

bool post_message(HWND window, UINT message, WPARAM wparam, LPARAM lparam, bool input) {
    const RunLock lock = run_threads().lock();
    if (window != nullptr && window_model().find(window) == nullptr)
        return false;
    PostedMessage entry;
    entry.message = {window, message, wparam, lparam, session().clock.ticks(), {0, 0}};
    entry.input = input;
    window_model().posted.push_back(entry);
    run_threads().wake();
    return true;
}

bool take_message(const Call& call, MSG& message) {
    RunLock lock = run_threads().lock();
    WindowModel& model = window_model();
    for (;;) {
        if (session().gate.stopped())
            throw RunStopped(session().gate.stop_reason());
        if (serve_sent(lock))
            continue;
        if (pop_posted(lock, message))
            return true;
        if (model.quit) {
            model.quit = false;
            message = quit_message();
            return false;
        }
        if (model.changed) {
            model.changed = false;
            lock.unlock();
            session().user.changed();
            lock.lock();
        } else if (run_threads().others_live()) {
            run_threads().wait(lock, [&] {
                return !model.sent.empty() || !model.posted.empty() || !run_threads().others_live();
            });
        } else {
            ask_user(lock, call);
        }
    }
}

bool take_waiting_message(MSG& message, bool remove) {
    RunLock lock = run_threads().lock();
    serve_sent(lock);
    if (!pop_posted(lock, message)) {
        if (!window_model().quit)
            return false;
        message = quit_message();
        window_model().quit = !remove;
        return true;
    }
    if (!remove)
        window_model().posted.push_front({message, false});
    return true;
}

void translate(const MSG& message) {
    if (message.message != WM_KEYDOWN)
        return;
    const WPARAM key = message.wParam;
    if (key == VK_BACK || key == VK_TAB || key == VK_RETURN || key == VK_ESCAPE || key == VK_SPACE)
        post_message(message.hwnd, WM_CHAR, key, message.lParam, false);
}

LRESULT dispatch(const MSG& message) {
    if (message.hwnd == nullptr)
        return 0;
    return call_procedure(message.hwnd, message.message, message.wParam, message.lParam);
}

} // namespace platform
