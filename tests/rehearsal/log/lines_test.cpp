// The table of log lines against the program's sources and against its page, and the codes against the
// platform's headers.
#include "machine/whole_file.h"
#include "rehearsal/log/errors.h"
#include "rehearsal/log/lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const fs::path source_root = fs::path(TRK_SAMPLE_MEDIUM).parent_path().parent_path();

std::string read_text(const fs::path& file) {
    return platform::read_whole_file(file).value_or("");
}

// What writes to the log, and which of its arguments, from 0, is the text. `enumerate` hands its opening line
// on.
const std::map<std::string, std::size_t> writers = {
    {"log_line", 0},    {"log_line_within", 1},    {"log_write", 1},   {"log_text", 0},
    {"log_failure", 0}, {"log_failure_within", 1}, {"log_refusal", 0}, {"enumerate", 3}};
// Routines whose names begin alike and that take no text, and the parameters through which writers pass
// theirs on.
const std::set<std::string> no_writers = {"log_slp_header", "log_parent_and_drivers"};
const std::set<std::string> passed_on = {"deploy/program_files.cpp: path",
                                         "spooler/inventory.cpp: opening_line"};

// The arguments of the call whose bracket opens in front of `place`, without line breaks and needless blanks.
std::vector<std::string> arguments_at(const std::string& text, std::size_t place) {
    std::vector<std::string> arguments(1);
    bool quoted = false;
    for (int depth = 1; place < text.size(); ++place) {
        const char c = text[place];
        if (quoted || c == '"') {
            quoted = c == '"' ? !quoted : quoted;
            if (c == '\\')
                arguments.back() += text[place++];
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth == 0) {
            break;
        } else if (c == ',' && depth == 1) {
            arguments.emplace_back();
            continue;
        } else if (c == '\n' || (c == ' ' && (arguments.back().empty() || arguments.back().back() == ' '))) {
            continue;
        }
        arguments.back() += text[place];
    }
    return arguments;
}

std::vector<std::string> literals_of(const std::string& argument) {
    static const std::regex literal(R"re(TEXT\(\s*"((?:[^"\\]|\\.)*)"\s*\))re");
    std::vector<std::string> found;
    for (std::sregex_iterator one(argument.begin(), argument.end(), literal), end; one != end; ++one)
        found.push_back((*one)[1]);
    return found;
}

// A literal of the sources, as the lines that it makes.
std::vector<std::string> lines_of(std::string literal) {
    literal = std::regex_replace(literal, std::regex(R"(\\r\\n|\\n)"), "\n");
    literal = std::regex_replace(literal, std::regex(R"(\\(["\\]))"), "$1");
    std::vector<std::string> lines;
    std::istringstream in(literal);
    for (std::string line; std::getline(in, line);)
        if (!line.empty())
            lines.push_back(line);
    return lines;
}

std::size_t count_fields(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '%'));
}

class Sources {
public:
    Sources() {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(source_root / "src"))
            if (entry.path().extension() == ".cpp" && entry.path().filename() != "install_log.cpp")
                read(entry.path());
    }
    std::set<std::string> keys;    // literals, and "file: argument" for what isn't one
    std::set<std::string> failing; // those that the program itself calls a failed step
    std::vector<std::string> strangers;

private:
    void read(const fs::path& file) {
        const std::string name = fs::relative(file, source_root / "src").generic_string();
        const std::string text = read_text(file);
        static const std::regex call(R"(\b(log_\w+|enumerate)\s*\()");
        for (std::sregex_iterator one(text.begin(), text.end(), call), end; one != end; ++one) {
            const auto behind = static_cast<std::size_t>(one->position() + one->length());
            const auto writer = writers.find((*one)[1]);
            if ((*one)[1] == "log_texts")
                take_each(name, arguments_at(text, behind));
            else if (writer != writers.end())
                take(name, arguments_at(text, behind), *writer);
            else if (!no_writers.contains((*one)[1]))
                strangers.push_back(name + ": " + (*one)[1].str());
        }
    }

    // A line of several texts, null where there is none.
    void take_each(const std::string& file, const std::vector<std::string>& arguments) {
        for (const std::string& argument : arguments)
            take(file, {argument}, {"log_text", 0});
    }

    void take(const std::string& file, const std::vector<std::string>& arguments,
              const std::pair<const std::string, std::size_t>& writer) {
        const std::size_t place = writer.second;
        if (place >= arguments.size() || arguments[0].find("const WCHAR*") != std::string::npos ||
            arguments[0].find("EnumerateCall") != std::string::npos)
            return; // its declaration
        const std::string& argument = arguments[place];
        const std::vector<std::string> literals = literals_of(argument);
        if (literals.empty() && argument != "nullptr" && !passed_on.contains(file + ": " + argument))
            keys.insert(file + ": " + argument);
        for (const std::string& literal : literals) {
            std::size_t next = place + 1;
            for (const std::string& line : lines_of(literal)) {
                const bool bare = line == "%s" || line == "%S";
                const std::string key = bare ? file + ": " + arguments.at(next) : line;
                keys.insert(key);
                if (writer.first.starts_with("log_failure") || writer.first == "log_refusal")
                    failing.insert(key);
                next += count_fields(line);
            }
        }
    }
};

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        parts.push_back(part);
    return parts;
}

std::vector<std::string> keys_of(const rehearsal::logs::Line& line) {
    return line.written == nullptr ? std::vector<std::string>{line.pattern} : split(line.written, '|');
}

std::vector<std::string> missing_from(const std::set<std::string>& all, const std::set<std::string>& some) {
    std::vector<std::string> missing;
    std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(missing));
    return missing;
}

} // namespace

TEST(LogLines, AreThoseOfTheSources) {
    const Sources sources;
    EXPECT_EQ(sources.strangers, std::vector<std::string>());
    EXPECT_GT(sources.keys.size(), 150u);
    std::set<std::string> table;
    for (const rehearsal::logs::Line& line : rehearsal::logs::lines())
        for (const std::string& key : keys_of(line))
            table.insert(key);
    EXPECT_EQ(missing_from(sources.keys, table), std::vector<std::string>()) << "the table lacks these";
    EXPECT_EQ(missing_from(table, sources.keys), std::vector<std::string>())
        << "no source writes these any more";
}

TEST(LogLines, CallAFailureWhatTheProgramCallsOne) {
    using namespace rehearsal::logs;
    const Sources sources;
    EXPECT_GT(sources.failing.size(), 40u);
    // Judged by what stands in them, there as here; and a driver of another version, which no step failed
    // over.
    const std::set<std::string> judged = {"copy file failed %d %d %s",
                                          "Installed driver has different version"};
    for (const Line& line : lines()) {
        const bool failed = line.weight == Weight::failed || line.weight == Weight::stopped;
        const std::vector<std::string> keys = keys_of(line);
        const bool failing = std::any_of(
            keys.begin(), keys.end(), [&](const std::string& key) { return sources.failing.contains(key); });
        EXPECT_TRUE(failed == failing || judged.contains(line.pattern)) << line.pattern;
    }
}

// A line that the program composes in a buffer reaches the log without a literal of its own.
TEST(LogLines, ComposedElsewhereStandInTheirSource) {
    unsigned looked = 0;
    for (const rehearsal::logs::Line& line : rehearsal::logs::lines()) {
        std::string text;
        std::string literals;
        for (const std::string& key : keys_of(line)) {
            const std::size_t file_end = key.find(".cpp: ");
            (file_end == std::string::npos ? literals : text) +=
                file_end == std::string::npos ? key
                                              : read_text(source_root / "src" / key.substr(0, file_end + 4));
        }
        if (text.empty() || line.bare)
            continue;
        for (const std::string& part : rehearsal::logs::literal_parts(line.pattern)) {
            EXPECT_TRUE((text + literals).find(part) != std::string::npos) << line.pattern << ": " << part;
            ++looked;
        }
    }
    EXPECT_GT(looked, 20u);
}

TEST(LogLines, TellCauseAndRemedyOfWhatFailed) {
    for (const rehearsal::logs::Line& line : rehearsal::logs::lines()) {
        EXPECT_NE(std::string(line.meaning), "") << line.pattern;
        if (line.weight != rehearsal::logs::Weight::plain) {
            EXPECT_NE(std::string(line.cause), "") << line.pattern;
            EXPECT_NE(std::string(line.remedy), "") << line.pattern;
        }
    }
}

TEST(LogLines, StandOnTheirPage) {
    const std::string page = read_text(source_root / "docs" / "log.md");
    const std::string tables = rehearsal::logs::lines_as_markdown() + "\n### the system's codes\n\n" +
                               rehearsal::logs::errors_as_markdown();
    EXPECT_TRUE(page.ends_with(tables)) << "docs/log.md isn't what trk log --lines prints";
}

TEST(LogErrors, HaveThePlatformsNames) {
    std::map<std::uint32_t, std::string> table;
    for (const rehearsal::logs::ErrorCode& one : rehearsal::logs::error_codes())
        EXPECT_TRUE(table.emplace(one.code, one.name).second) << one.code << " stands twice";
    static const std::regex definition(
        R"(#define ((?:ERROR|RPC|EPT|WSA|E|REGDB)_?\w+) (?:\(static_cast<HRESULT>\()?(0x\w+?|\d+)u?\)*\n)");
    unsigned looked = 0;
    for (const char* header : {"winerror.h", "winsock2.h"}) {
        const std::string text = read_text(source_root / "platform" / "include" / header);
        for (std::sregex_iterator one(text.begin(), text.end(), definition), end; one != end; ++one) {
            const std::string name = (*one)[1];
            if (name.ends_with("_LEN"))
                continue;
            const auto code = static_cast<std::uint32_t>(std::stoul((*one)[2], nullptr, 0));
            EXPECT_EQ(table[code], name);
            ++looked;
        }
    }
    EXPECT_GT(looked, 80u);
}

TEST(LogErrors, AreFoundInEachOfTheirForms) {
    const struct {
        std::uint32_t code;
        const char* shown;
    } cases[] = {
        {5, "ERROR_ACCESS_DENIED (5)"},
        {0x80070005, "E_ACCESSDENIED (0x80070005)"},
        {0x80070003, "HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND) (0x80070003)"},
        {0xE000024B, "ERROR_FILE_HASH_NOT_IN_CATALOG (0xE000024B)"},
        {0x800F024B, "SPAPI_E_FILE_HASH_NOT_IN_CATALOG (0x800F024B)"},
        {4711, "error 4711"},
        {0x80071267, "error 0x80071267"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(rehearsal::logs::shown_error(rehearsal::logs::name_error(one.code)), one.shown);
}
