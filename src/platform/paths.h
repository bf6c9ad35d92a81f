#pragma once
// Every absolute path the system names is resolved here. KESTRELLE_ROOT, when set,
// is put in front of it so that tests and the demo run the real program in a private
// tree; unset or empty, paths are exactly the system's own. /dev paths are never moved.
#include <string>
#include <string_view>

std::string root_path(std::string_view absolute);
// The root prefix itself ("" when unset).
std::string root_prefix();

bool path_exists(const std::string& path);       // any kind of file
bool is_regular_file(const std::string& path);
bool is_directory(const std::string& path);
