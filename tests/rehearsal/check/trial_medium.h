// Distribution folders that a test spoils.
#pragma once

#include "harness/test_session.h"

#include <functional>
#include <string>
#include <vector>

// A folder of its own with a copy of a whole medium.
class TrialMedium {
public:
    explicit TrialMedium(const std::filesystem::path& original);

    std::filesystem::path path() const { return folder_.path / "medium"; }
    // Every `from` of the file becomes `to`; a file without it fails the test.
    void replace(const std::string& file, const std::string& from, const std::string& to);
    void replace_last(const std::string& file, const std::string& from, const std::string& to);
    void write(const std::string& file, const std::string& bytes);
    std::string read(const std::string& file) const;
    void remove(const std::string& file); // or a folder with all in it
    void rename(const std::string& from, const std::string& to);
    void copy(const std::string& from, const std::string& to);

private:
    TemporaryFolder folder_;
};

// A medium of another maker: one driver for both architectures, all of it told by architecture, no USB, files
// in folders of other names and one that is renamed, LF line ends. Made once.
std::filesystem::path other_medium();

// One mistake in a medium, and what the check of INF and files says of it: "FILE:LINE:COLUMN id", warnings
// with a "?" behind.
struct Mutation {
    const char* name;
    std::function<void(TrialMedium&)> apply;
    std::vector<std::string> findings;
};

const std::vector<Mutation>& sample_mutations();
const std::vector<Mutation>& other_mutations();

// The findings of the subjects layout, inf and files, but for those that the untouched media have.
std::vector<std::string> findings_of(const std::filesystem::path& medium);
