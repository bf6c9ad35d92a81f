#pragma once
// Texts as the files hold them. The program's files were written by older tools in
// Latin-1 and by newer ones in UTF-8, and both kinds sit side by side; a window can only
// show UTF-8. Files keep their bytes: only what a window shows is converted.
#include <string>
#include <string_view>

// bytes as a window shows them: unchanged when they are valid UTF-8, otherwise read as
// Latin-1, where every byte is a character, so nothing is dropped or cut.
std::string shown_text(std::string_view bytes);

// Whether part appears anywhere in text.
inline bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }
