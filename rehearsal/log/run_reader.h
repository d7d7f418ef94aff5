// Takes the lines of one run, one after the other, and what each says about it.
#pragma once

#include "rehearsal/log/runs.h"

namespace rehearsal::logs {

class RunReader {
public:
    // `text` is a line's, with control characters still in it. Behind a line without an end of its own there
    // may be more.
    void take(std::size_t number, std::string_view text);
    // The run with its leftovers and verdict.
    Run finish();

    std::size_t recognised() const { return recognised_; } // lines of the program's that aren't bare

private:
    const Line* recognise(std::string_view text, Fields& fields);
    void take_piece(std::size_t number, std::string_view text);
    void note(const Line& line, const Fields& fields);
    void note_start(const Line& line, const Fields& fields);
    void note_printers(const Line& line, const Fields& fields);
    void add_printer(const FoundPrinter& printer);
    void note_install(const Line& line, const Fields& fields);
    void add_step(std::size_t number, std::string_view text, const Line& line, const Fields& fields);
    void expect_after(Role role);
    void tell_leftovers();
    void judge();
    void judge_without_install();

    Run run_;
    std::optional<Role> expected_; // the bare line that comes next
    bool in_search_ = false;
    std::size_t recognised_ = 0;

    // What only the verdict and the leftovers need.
    Role last_role_ = Role::none;
    bool began_ = false;
    std::string install_folder_;
    std::string maker_folder_;
    std::string start_menu_;
    std::size_t files_ = 0;
    std::vector<std::string> shortcuts_;
    std::string store_path_;
    bool driver_done_ = false;
    std::string port_;
    bool port_made_ = false;
    std::string queue_;
    bool queue_failed_ = false;
    std::size_t labels_ = 0;
};

} // namespace rehearsal::logs
