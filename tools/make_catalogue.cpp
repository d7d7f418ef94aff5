// Signs the driver package of a folder with a certificate made on the spot, so that the sample has a
// catalogue that fits it: make_catalogue FOLDER NAME. All files of the folder are listed but the catalogue
// itself. The keys are thrown away, so that nobody can sign anything else in their name; each run gives
// another signature.
#include "catalogue_writer.h"
#include "machine/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

// The sample's own dates: the driver's version is of 26 July 2024.
constexpr std::int64_t made = 1722074400;       // 27 July 2024, 10:00
constexpr std::int64_t not_before = 1704067200; // 1 January 2024
constexpr std::int64_t not_after = 2524607999;  // 31 December 2049

std::vector<catalogue::ListedFile> files_of(const fs::path& folder, const std::string& without) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && entry.path().filename() != without)
            paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<catalogue::ListedFile> files;
    for (const fs::path& path : paths) {
        std::optional<std::string> bytes = platform::read_whole_file(path);
        if (!bytes)
            throw std::runtime_error(path.string() + " can't be read");
        files.push_back({path.filename().string(), *std::move(bytes)});
    }
    return files;
}

std::string make(const fs::path& folder, const std::string& name) {
    using namespace catalogue;
    ListOptions list;
    list.made = made;
    list.systems = "VistaX86,VistaX64,7X86,7X64,8X86,8X64,_v63,_v63_X64,_v100,_v100_X64";
    const Identity root = make_identity(KeyKind::rsa, "Sample Root (trusted by nobody)", Purpose::authority,
                                        not_before, not_after, nullptr);
    SignOptions sign;
    sign.signer =
        make_identity(KeyKind::rsa, "Sample Signer", Purpose::code_signing, not_before, not_after, &root);
    sign.chain = {root};
    sign.claimed_time = made;
    sign.stamp = Stamp{StampForm::rfc3161,
                       make_identity(KeyKind::rsa, "Sample Time Stamps", Purpose::time_stamping, not_before,
                                     not_after, &root),
                       made};
    return sign_list(make_list(files_of(folder, name), list), sign);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::cerr << "usage: make_catalogue FOLDER NAME\n";
        return 2;
    }
    const fs::path folder = arguments[1];
    try {
        const std::string bytes = make(folder, arguments[2]);
        std::ofstream file(folder / arguments[2], std::ios::binary);
        file << bytes << std::flush;
        if (file)
            return 0;
        std::cerr << (folder / arguments[2]).string() << ": can't be written\n";
    } catch (const std::exception& error) {
        std::cerr << folder.string() << ": " << error.what() << '\n';
    }
    return 1;
}
