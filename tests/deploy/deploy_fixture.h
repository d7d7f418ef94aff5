// A machine with the sample medium, and what a deployment leaves on it.
#pragma once

#include "calls/shell/link_reader.h"
#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <set>

class Deployment : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(TRK_SAMPLE_MEDIUM, test.medium, std::filesystem::copy_options::recursive);
    }

    // Every file and every empty folder below, by path from there.
    static std::set<std::string> tree(const std::filesystem::path& folder) {
        std::set<std::string> found;
        if (!std::filesystem::exists(folder))
            return found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
            const std::string name = std::filesystem::relative(entry.path(), folder).string();
            if (!entry.is_directory())
                found.insert(name);
            else if (std::filesystem::is_empty(entry.path()))
                found.insert(name + "/");
        }
        return found;
    }

    platform::LinkFile link(const std::string& name) const {
        std::string reason;
        const auto read = platform::read_link(TestSession::read(programs / name), 1252, reason);
        EXPECT_TRUE(read.has_value()) << name << ": " << reason;
        return read.value_or(platform::LinkFile());
    }

    void expect_all_given_back() {
        EXPECT_TRUE(platform::session().memory.live().empty());
        for (const std::string& kind : platform::session().handles.open_kinds())
            EXPECT_TRUE(kind == "file" || kind == "mutex") << kind; // the log's
        EXPECT_TRUE(platform::session().gate.misuses().empty());
    }

    TestSession test;
    std::filesystem::path program_files = test.drive_c / "Program Files";
    std::filesystem::path programs = test.drive_c / "ProgramData/Microsoft/Windows/Start Menu/Programs";
};
