// The readers that are fed with bytes that nobody has checked. Each is one routine that takes any bytes, in a
// file of its own; main.cpp hands them to libFuzzer and replay.cpp runs them over the corpora that are kept.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

struct Target {
    std::string_view name; // of its file, and of its folder in fuzz/corpus
    void (*run)(std::string_view input);
};

extern const std::vector<Target> targets;

// Ends the process with a message, which both hosts take for a finding, unless the condition holds.
void require(bool condition, const char* what);

void driver_inf(std::string_view input);
void settings(std::string_view input);
void media_table(std::string_view input);
void monitor_inf(std::string_view input);
void profile_names(std::string_view input);
void slp_reply(std::string_view input);
void formatter(std::string_view input);
void number_scan(std::string_view input);
void registry_text(std::string_view input);
void terms_text(std::string_view input);
void machine_json(std::string_view input);
void action_script(std::string_view input);
void inf_package(std::string_view input);
void link_reader(std::string_view input);
void attribute_agent(std::string_view input);
void catalogue(std::string_view input);
void install_log(std::string_view input);
void check_readers(std::string_view input);

} // namespace fuzz
