#include "rehearsal/matrix/results.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <ostream>
#include <stdexcept>

namespace rehearsal::matrix {
namespace {

using Json = nlohmann::ordered_json;

constexpr char form[] = "trk-matrix-1";

Json written(const Result& result) {
    const Cell& cell = result.cell;
    return {{"cell", cell.name()},
            {"language", cell.language},
            {"system", cell.system},
            {"windows", cell.windows},
            {"state", std::string(1, cell.state)},
            {"road", cell.road},
            {"fault", cell.fault},
            {"status", result.status},
            {"silent_failure", result.silent_failure()},
            {"verdict", result.verdict},
            {"box", result.box},
            {"success_box", result.success_box},
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
    json.at("exit_code").get_to(result.exit_code);
    json.at("missing").get_to(result.missing);
    json.at("stayed").get_to(result.stayed);
    return result;
}

} // namespace

void print_json(std::ostream& out, const Matrix& matrix) {
    Json json = {{"schema", form}, {"medium", matrix.medium}, {"not_run", matrix.not_run}};
    json["results"] = Json::array();
    for (const Result& result : matrix.results)
        json["results"].push_back(written(result));
    out << json.dump(1, ' ', false, Json::error_handler_t::replace) << "\n";
}

Matrix read_json(const std::string& file) {
    try {
        std::ifstream stream(file, std::ios::binary);
        if (!stream)
            throw std::runtime_error("can't be opened");
        const Json json = Json::parse(stream);
        if (json.at("schema") != form)
            throw std::runtime_error("isn't what trk matrix --format json writes");
        Matrix matrix;
        json.at("medium").get_to(matrix.medium);
        json.at("not_run").get_to(matrix.not_run);
        for (const Json& result : json.at("results"))
            matrix.results.push_back(read(result));
        return matrix;
    } catch (const std::exception& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
}

} // namespace rehearsal::matrix
