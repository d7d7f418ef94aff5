// A matrix as JSON, between processes and between computers.
#include "rehearsal/matrix/results.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <ostream>
#include <stdexcept>

namespace rehearsal::matrix {
namespace {

using Json = nlohmann::ordered_json;

constexpr char form[] = "trk-matrix-1";

Json written(const Result& result) {
    const Cell& cell = result.cell;
    return {{"run", cell.name()},
            {"language", cell.language},
            {"system", cell.system},
            {"windows", cell.windows},
            {"state", std::string(1, cell.state)},
            {"road", cell.road},
            {"fault", cell.fault},
            {"ending", name_of(result.ending())},
            {"status", result.status},
            {"verdict", result.verdict},
            {"box", result.box},
            {"success_box", result.success_box},
            {"failure_box", result.failure_box},
            {"exit_code", result.exit_code},
            {"missing", result.missing},
            {"stayed", result.stayed}};
}

Result read(const Json& json) {
    Result result;
    json.at("language").get_to(result.cell.language);
    json.at("system").get_to(result.cell.system);
    json.at("windows").get_to(result.cell.windows);
    const auto state = json.at("state").get<std::string>();
    if (state.size() != 1)
        throw std::runtime_error("a state is one letter");
    result.cell.state = state[0];
    json.at("road").get_to(result.cell.road);
    json.at("fault").get_to(result.cell.fault);
    json.at("status").get_to(result.status);
    json.at("verdict").get_to(result.verdict);
    json.at("box").get_to(result.box);
    json.at("success_box").get_to(result.success_box);
    json.at("failure_box").get_to(result.failure_box);
    json.at("exit_code").get_to(result.exit_code);
    json.at("missing").get_to(result.missing);
    json.at("stayed").get_to(result.stayed);
    return result;
}

std::vector<std::string> shard_texts(const std::vector<Shard>& shards) {
    std::vector<std::string> texts;
    for (const Shard& shard : shards)
        texts.push_back(shard_text(shard));
    return texts;
}

std::string dumped(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Matrix read_json(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("can't be opened");
    const Json json = Json::parse(stream, nullptr, false);
    if (!json.is_object() || json.value("schema", Json()) != form)
        throw std::runtime_error("isn't what trk matrix --format json writes");
    Matrix matrix;
    json.at("medium").get_to(matrix.medium);
    json.at("driver").get_to(matrix.driver);
    json.at("version").get_to(matrix.version);
    json.at("faults").get_to(matrix.faults);
    json.at("only").get_to(matrix.only);
    json.at("not_run").get_to(matrix.not_run);
    json.at("more").get_to(matrix.more);
    json.at("cut").get_to(matrix.cut);
    for (const Json& shard : json.at("shards"))
        matrix.shards.push_back(read_shard(shard.get<std::string>()));
    for (const Json& result : json.at("results"))
        matrix.results.push_back(read(result));
    return matrix;
}

// Two parts must be of one matrix.
void refuse_other(const Matrix& first, const Matrix& other) {
    if (other.driver != first.driver || other.version != first.version)
        throw std::runtime_error("of another driver, " + other.driver + " " + other.version);
    if (other.faults != first.faults)
        throw std::runtime_error("of a matrix with --faults " + other.faults);
    if (other.shards.empty() != first.shards.empty() ||
        (!first.shards.empty() && other.shards.front().count != first.shards.front().count))
        throw std::runtime_error("of a matrix that was shared out in another way");
    for (const Shard& shard : other.shards)
        if (std::find(first.shards.begin(), first.shards.end(), shard) != first.shards.end())
            throw std::runtime_error("shard " + shard_text(shard) + " is in another file too");
}

void take_over(Matrix& merged, Matrix other) {
    merged.not_run += other.not_run;
    merged.more |= other.more;
    merged.cut = merged.cut.empty() ? other.cut : merged.cut;
    for (const std::string& pattern : other.only)
        if (std::find(merged.only.begin(), merged.only.end(), pattern) == merged.only.end())
            merged.only.push_back(pattern);
    std::copy(other.shards.begin(), other.shards.end(), std::back_inserter(merged.shards));
    std::move(other.results.begin(), other.results.end(), std::back_inserter(merged.results));
}

// What a lost file had in it was not run, for all that is known.
void note_missing_shards(Matrix& merged) {
    std::string missing;
    for (std::size_t number = 1; !merged.shards.empty() && number <= merged.shards.front().count; ++number)
        if (const Shard one{number, merged.shards.front().count};
            std::find(merged.shards.begin(), merged.shards.end(), one) == merged.shards.end())
            missing += (missing.empty() ? "" : ", ") + shard_text(one);
    if (missing.empty())
        return;
    merged.more = true;
    merged.cut += (merged.cut.empty() ? "" : "; ") + ("no file has shard " + missing);
}

} // namespace

std::string result_text(const Result& result) {
    return dumped(written(result), -1);
}

Result read_result(const std::string& text) {
    try {
        return read(Json::parse(text));
    } catch (const Json::exception& error) {
        throw std::runtime_error(error.what());
    }
}

void print_json(std::ostream& out, const Matrix& matrix) {
    Json json = {{"schema", form},
                 {"medium", matrix.medium},
                 {"driver", matrix.driver},
                 {"version", matrix.version},
                 {"faults", matrix.faults},
                 {"only", matrix.only},
                 {"shards", shard_texts(matrix.shards)},
                 {"passed", matrix.passed()},
                 {"not_run", matrix.not_run},
                 {"more", matrix.more},
                 {"cut", matrix.cut}};
    json["results"] = Json::array();
    for (const Result& result : matrix.results) {
        json["results"].push_back(written(result));
        json["results"].back()["again"] = repeat_command(matrix, result.cell);
    }
    out << dumped(json, 1) << "\n";
}

Matrix merge_files(const std::vector<std::string>& files) {
    Matrix merged;
    std::map<std::string, std::string> owners; // of each run
    for (const std::string& file : files) {
        try {
            const bool first = &file == &files.front();
            Matrix one = read_json(file);
            if (!first)
                refuse_other(merged, one);
            for (const Result& result : one.results)
                if (const auto [owner, is_new] = owners.emplace(result.cell.name(), file); !is_new)
                    throw std::runtime_error(result.cell.name() + " is in " + owner->second + " too");
            if (first)
                merged = std::move(one);
            else
                take_over(merged, std::move(one));
        } catch (const std::exception& error) {
            throw std::runtime_error(file + ": " + error.what());
        }
    }
    note_missing_shards(merged);
    return merged;
}

} // namespace rehearsal::matrix
