// The built tool with a machine and a script in a folder of their own.
#pragma once

#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include <sys/wait.h>

namespace fs = std::filesystem;

class TrkProgram : public testing::Test {
protected:
    static constexpr char machine_text[] =
        R"json({"clock": "2024-07-04T09:05:01", "adapters": [{"addresses": ["10.0.0.2"],
      "network": "scripted", "searches": [[{"from": "10.0.0.7",
      "text": "(printer-name=\u001b[31mred),(id=MDL:Label_100_Series;)"}]]}]})json";
    static constexpr char install_script[] =
        "press Network\nselect red\npress \"Install Printer\"\ntick 1011\npress ok\n"
        "expect box installed\nexpect queue Label 100 Series\n";

    TrkProgram() {
        TestSession::write(machine, machine_text);
        TestSession::write(script, install_script);
    }

    // The exit status of a rehearsal with these options; what it printed is in `out` and `err`.
    int rehearse(const std::string& options) {
        return run(program, "rehearse " + options + " " + TRK_SAMPLE_MEDIUM);
    }
    int run(const std::string& trk, const std::string& options) {
        const std::string command = trk + " " + options + " </dev/null >" + (folder.path / "out").string() +
                                    " 2>" + (folder.path / "err").string();
        const int status = std::system(command.c_str());
        out = fs::exists(folder.path / "out") ? TestSession::read(folder.path / "out") : "";
        err = TestSession::read(folder.path / "err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // The names beside the machine, without the two files of what was printed.
    std::set<std::string> names() const {
        std::set<std::string> all;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.path))
            all.insert(entry.path().filename().string());
        all.erase("out");
        all.erase("err");
        return all;
    }

    TemporaryFolder folder;
    const std::string program = TRK_PROGRAM;
    const fs::path machine = folder.path / "m.json";
    const fs::path script = folder.path / "s";
    const std::string usual = "--machine " + machine.string() + " --script " + script.string();
    std::string out, err;
};
