// Every file of src/ lives on a floor and includes only its own floor or floors below, so
// that the store and the launcher build without any window and the fleet checker links no
// window code.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

namespace fs = std::filesystem;

// Bottom first; "" is src/ itself (main.cpp), on top of everything. -1: on no floor.
static int floor_of(const std::string& folder)
{
    static const std::vector<std::string> floors = {"platform", "store", "keymaps", "launch", "check", "ui",
                                                    "shell",    "ica",   "editors", "admin",  ""};
    const auto found = std::find(floors.begin(), floors.end(), folder);
    return found == floors.end() ? -1 : int(found - floors.begin());
}

TEST(Floors, NoIncludePointsUp)
{
    const std::regex include_line(R"(^\s*#\s*include\s*"([^"/]+)/[^"]+")");
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(SRC_DIR)) {
        if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
            continue;
        ++files;
        const fs::path relative = fs::relative(entry.path(), SRC_DIR);
        const std::string own = relative.has_parent_path() ? relative.begin()->string() : "";
        EXPECT_GE(floor_of(own), 0) << relative << " is in a folder that is on no floor";
        std::ifstream in(entry.path());
        std::string line;
        for (int number = 1; std::getline(in, line); ++number) {
            std::smatch match;  // includes beside the including file have no folder and match not
            if (!std::regex_search(line, match, include_line))
                continue;
            EXPECT_TRUE(floor_of(match[1]) >= 0 && floor_of(match[1]) <= floor_of(own))
                << relative.string() << ":" << number << " includes " << match[1] << "/..., which is on no floor "
                << "or above the " << (own.empty() ? "top" : own) << " floor";
        }
    }
    EXPECT_GT(files, 50);
}
