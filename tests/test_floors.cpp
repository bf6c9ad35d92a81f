// Every file of src/ lives on a floor and includes only its own floor or floors below,
// so that the store and the launcher build without any window and the fleet checker
// links no window code.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace fs = std::filesystem;

namespace {

// Bottom first. "" is src/ itself (main.cpp), which sits on top of everything.
const std::vector<std::string> floors = {"platform", "store",   "keymaps", "launch", "check",
                                         "ui",       "shell",   "ica",     "editors", "admin", ""};

int floor_of(const std::string& folder)
{
    const auto found = std::find(floors.begin(), floors.end(), folder);
    return found == floors.end() ? -1 : int(found - floors.begin());
}

std::string folder_of(const fs::path& relative)
{
    return std::distance(relative.begin(), relative.end()) > 1 ? relative.begin()->string() : "";
}

}  // namespace

TEST(Floors, NoIncludePointsUp)
{
    const fs::path src = SRC_DIR;
    const std::regex include_line(R"(^\s*#\s*include\s*"([^"]+)\")");
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        const std::string ext = entry.path().extension();
        if (ext != ".cpp" && ext != ".h")
            continue;
        ++files;
        const fs::path relative = fs::relative(entry.path(), src);
        const int own = floor_of(folder_of(relative));
        EXPECT_GE(own, 0) << relative << " is in a folder that is on no floor";
        std::ifstream in(entry.path());
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch match;
            if (!std::regex_search(line, match, include_line))
                continue;
            const fs::path target = match[1].str();
            if (std::distance(target.begin(), target.end()) < 2)
                continue;  // beside the including file
            const std::string folder = target.begin()->string();
            EXPECT_LE(floor_of(folder), own)
                << relative.string() << ":" << number << " includes " << target << " from the "
                << (folder_of(relative).empty() ? "top" : folder_of(relative)) << " floor, but "
                << folder << " is above it";
            EXPECT_GE(floor_of(folder), 0) << relative.string() << ":" << number << " includes "
                                           << target << ", which is on no floor";
        }
    }
    EXPECT_GT(files, 50);
}
