// trk_photographer LIMIT FOLDER SCRIPT PICTURES COMMAND-LINE
//
// Starts the command line in the folder and follows the script, whose lines are the rehearsal's actions and
// these:
//   picture NAME  the window that waits for input, a message box too
//   behind NAME   the first dialog, without what lies over it
//   answer        OK to the message box
// Pictures go to the folder PICTURES as NAME.bmp. When the script is over the program is ended. Exit status:
// 0 all went well; 1 the script couldn't be followed, or a picture shows something cut or overlapping, which
// standard output tells; 2 wrong usage.
#include "acceptance/pictures/picture.h"
#include "acceptance/pilot/hand.h"
#include "acceptance/pilot/program.h"
#include "acceptance/pilot/window_text.h"

#include <cstdio>
#include <cwchar>
#include <fstream>

namespace {

using pilot::Scene;

constexpr DWORD poll_ms = 15;
constexpr int quiet_looks = 5; // as long at rest before a step is taken
constexpr DWORD paint_ms = 300;

enum class Kind { action, picture, behind, answer };

struct Step {
    Kind kind = Kind::action;
    rehearsal::Action action;
    std::string name;
    std::string shown; // for complaints
};

struct Session {
    pilot::Program program;
    Scene scene;
    std::filesystem::path folder;
    ULONGLONG end = 0; // by GetTickCount64
    bool faults = false;
};

constexpr struct {
    const char* word;
    Kind kind;
} words[] = {{"picture ", Kind::picture}, {"behind ", Kind::behind}};

bool parse_step(std::string line, Step& step) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    step = {};
    step.shown = line;
    for (const auto& [word, kind] : words) {
        if (line.starts_with(word)) {
            step.kind = kind;
            step.name = line.substr(std::string(word).size());
            return true;
        }
    }
    if (line == "answer") {
        step.kind = Kind::answer;
        return true;
    }
    return rehearsal::parse_action(line, step.action);
}

std::vector<Step> read_steps(const wchar_t* path) {
    std::ifstream file{std::filesystem::path(path)};
    if (!file)
        throw rehearsal::ScriptError("the script can't be read");
    std::vector<Step> steps;
    Step step;
    for (std::string line; std::getline(file, line);)
        if (parse_step(line, step))
            steps.push_back(step);
    return steps;
}

// Until the program waits for input. Empty, or why it doesn't.
std::string wait_for_rest(Session& session) {
    std::vector<pilot::Dialog> before;
    const Scene& scene = session.scene;
    for (int quiet = 0; quiet < quiet_looks; Sleep(poll_ms)) {
        if (session.program.ended())
            return "the program has ended";
        if (GetTickCount64() > session.end)
            return "the program doesn't come to rest";
        const bool answered = session.scene.look(session.program.process_ids());
        const bool calm =
            answered && (scene.open_box() != nullptr || !scene.at_work()) && scene.dialogs() == before;
        before = scene.dialogs();
        quiet = calm ? quiet + 1 : 0;
    }
    return {};
}

void move(HWND window, int x, int y) {
    SetWindowPos(window, nullptr, x, y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
}

// The picture is of one window alone, so all others of the program go to the other side of the screen.
void put_forward(const Scene& scene, HWND window) {
    const int middle_x = GetSystemMetrics(SM_CXSCREEN) / 2;
    const int middle_y = GetSystemMetrics(SM_CYSCREEN) / 2;
    for (const pilot::Dialog& dialog : scene.dialogs())
        if (dialog.visible && dialog.window != window)
            move(dialog.window, middle_x, middle_y);
    if (scene.open_box() != nullptr && scene.open_box()->window != window)
        move(scene.open_box()->window, middle_x, middle_y);
    move(window, 0, 0);
}

std::string photograph(Session& session, const pilot::Dialog* dialog, HWND window, const std::string& name) {
    put_forward(session.scene, window);
    Sleep(paint_ms);
    if (dialog != nullptr) {
        for (const std::string& fault : pictures::faults_of(*dialog)) {
            std::printf("%s: %s\n", name.c_str(), fault.c_str());
            session.faults = true;
        }
    }
    return pictures::save_picture(window, session.folder / (name + ".bmp"));
}

std::string photograph_front(Session& session, const std::string& name) {
    if (const pilot::Box* const box = session.scene.open_box(); box != nullptr)
        return photograph(session, nullptr, box->window, name);
    const pilot::Dialog* const dialog = session.scene.topmost();
    return dialog == nullptr ? "no dialog is open" : photograph(session, dialog, dialog->window, name);
}

std::string photograph_first(Session& session, const std::string& name) {
    if (session.scene.dialogs().empty())
        return "no dialog is open";
    const pilot::Dialog& dialog = session.scene.dialogs().front();
    return photograph(session, &dialog, dialog.window, name);
}

std::string answer_box(const Session& session) {
    const pilot::Box* const box = session.scene.open_box();
    if (box == nullptr)
        return "no message box is open";
    pilot::answer(*box);
    return {};
}

std::string take(Session& session, const Step& step) {
    if (const std::string problem = wait_for_rest(session); !problem.empty())
        return problem;
    switch (step.kind) {
    case Kind::picture:
        return photograph_front(session, step.name);
    case Kind::behind:
        return photograph_first(session, step.name);
    case Kind::answer:
        return answer_box(session);
    default:
        return pilot::perform(step.action, session.scene);
    }
}

int run(wchar_t** arguments) {
    std::vector<Step> steps;
    try {
        steps = read_steps(arguments[3]);
    } catch (const rehearsal::ScriptError& error) {
        std::fprintf(stderr, "photographer: %s\n", error.what());
        return 2;
    }
    Session session;
    session.folder = arguments[4];
    session.end = GetTickCount64() + 1000 * std::wcstoul(arguments[1], nullptr, 10);
    std::string problem = session.program.start(arguments[5], arguments[2]);
    for (const Step& step : steps) {
        if (!problem.empty())
            break;
        problem = take(session, step);
        if (!problem.empty())
            problem = step.shown + ": " + problem;
    }
    session.program.terminate();
    if (!problem.empty())
        std::fprintf(stderr, "photographer: %s\n", problem.c_str());
    return problem.empty() && !session.faults ? 0 : 1;
}

} // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 6) {
        std::fprintf(stderr, "usage: trk_photographer LIMIT FOLDER SCRIPT PICTURES COMMAND-LINE\n");
        return 2;
    }
    return run(arguments);
}
