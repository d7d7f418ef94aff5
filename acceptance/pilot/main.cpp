// trk_pilot LIMIT FOLDER SCRIPT RECORD COMMAND-LINE
//
// Starts the command line in the folder, follows the script whenever the program waits for input, answers
// message boxes by OK, then waits for an install in progress and closes what is open. What was seen goes to
// the record. After LIMIT seconds the program is ended. Exit status: 0 the program ended by itself; 1 it
// didn't, or the script couldn't be followed; 2 wrong usage.
#include "acceptance/pilot/hand.h"
#include "acceptance/pilot/program.h"
#include "acceptance/pilot/record.h"
#include "acceptance/pilot/window_text.h"

#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

using pilot::Scene;

constexpr DWORD poll_ms = 15;
// The program is at rest when it looks the same and answers this many times in a row: a posted action is
// taken before the thread answers twice.
constexpr int quiet_looks = 5;

enum class Rest { waits, ended, timed_out };

struct Drive {
    pilot::Program program;
    Scene scene;
    ULONGLONG end = 0; // by GetTickCount64
    HWND answered = nullptr;
};

// True when there is nothing to answer. A box is answered once and then given time to go.
bool answer_boxes(Drive& drive) {
    const pilot::Box* const box = drive.scene.open_box();
    if (box == nullptr)
        return true;
    if (box->window != drive.answered)
        pilot::answer(*box);
    drive.answered = box->window;
    return false;
}

Rest wait_for_rest(Drive& drive) {
    std::vector<pilot::Dialog> before;
    for (int quiet = 0; quiet < quiet_looks; Sleep(poll_ms)) {
        if (drive.program.ended())
            return Rest::ended;
        if (GetTickCount64() > drive.end)
            return Rest::timed_out;
        const bool answered = drive.scene.look(drive.program.process_ids());
        const bool calm =
            answered && answer_boxes(drive) && !drive.scene.at_work() && drive.scene.dialogs() == before;
        before = drive.scene.dialogs();
        quiet = calm ? quiet + 1 : 0;
    }
    return Rest::waits;
}

// Follows the script; the reason why it can't be followed further goes to `problem`.
Rest follow(Drive& drive, const std::vector<rehearsal::Action>& actions, std::string& problem) {
    Rest rest = wait_for_rest(drive);
    for (const rehearsal::Action& action : actions) {
        const std::string line = "line " + std::to_string(action.line) + ": " + action.shown + ": ";
        if (rest != Rest::waits) {
            problem =
                line + (rest == Rest::ended ? "the program has ended" : "the program doesn't come to rest");
            return rest;
        }
        if (const std::string reason = perform(action, drive.scene); !reason.empty()) {
            problem = line + reason;
            return rest;
        }
        rest = wait_for_rest(drive);
    }
    return rest;
}

// Closes one dialog after the other until the program ends.
Rest leave(Drive& drive, Rest rest) {
    rehearsal::Action close;
    close.verb = rehearsal::Verb::close;
    for (; rest == Rest::waits; rest = wait_for_rest(drive))
        perform(close, drive.scene);
    return rest;
}

pilot::Ending drive_program(Drive& drive, const std::vector<rehearsal::Action>& actions) {
    pilot::Ending ending;
    const Rest rest = leave(drive, follow(drive, actions, ending.script_problem));
    ending.timed_out = rest == Rest::timed_out;
    if (ending.timed_out)
        drive.program.terminate();
    ending.exit_code = drive.program.exit_code();
    return ending;
}

int run(const wchar_t* limit, const wchar_t* folder, const wchar_t* script, const wchar_t* record,
        const wchar_t* command_line) {
    std::vector<rehearsal::Action> actions;
    try {
        actions = rehearsal::read_script(script);
    } catch (const rehearsal::ScriptError& error) {
        std::fprintf(stderr, "pilot: %s\n", error.what());
        return 2;
    }
    Drive drive;
    drive.end = GetTickCount64() + 1000 * std::wcstoul(limit, nullptr, 10);
    if (const std::string problem = drive.program.start(command_line, folder); !problem.empty()) {
        std::fprintf(stderr, "pilot: %s\n", problem.c_str());
        return 1;
    }
    const pilot::Ending ending = drive_program(drive, actions);
    std::ofstream file(std::filesystem::path(record), std::ios::binary);
    const bool written = static_cast<bool>((file << pilot::record_text(drive.scene, ending)).flush());
    if (!ending.script_problem.empty())
        std::fprintf(stderr, "pilot: %s\n", ending.script_problem.c_str());
    if (ending.timed_out)
        std::fprintf(stderr, "pilot: the program was ended at the time limit\n");
    return written && !ending.timed_out && ending.script_problem.empty() ? 0 : 1;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 6) {
        std::fprintf(stderr, "usage: trk_pilot LIMIT FOLDER SCRIPT RECORD COMMAND-LINE\n");
        return 2;
    }
    return run(arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}
