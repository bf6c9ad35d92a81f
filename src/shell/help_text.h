#pragma once
// The help file's text as the help window can show it.
#include <string>

// A line that is valid UTF-8 stays as it is; any other line is read as Latin-1, where
// every byte is a character, so that no text of the file is ever dropped.
std::string displayable_help_line(const std::string& line);
