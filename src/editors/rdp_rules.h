#pragma once
// The RDP editor's rules that need no window: the experience presets in both
// directions, the local printers of a printcap file, the earlier printer choices found
// in the printer entry's text, and the printer selection text built from the choices.
#include <cstdio>
#include <string>
#include <vector>

// The preset text that the four experience bits of flags give: a preset whose features
// are exactly the ones set, else "Custom".
const char* experience_for_bits(unsigned long flags);
// flags with its four experience bits set as the preset allows; "Custom" and a text
// that names no preset leave flags as they are.
unsigned long bits_for_experience(const std::string& preset, unsigned long flags);

// The local printer names of a printcap file, in file order: comments, continuation
// lines and lines without ":" give none, aliases after "|" are dropped.
std::vector<std::string> printcap_names(FILE* printcap);

// A printer found in the printer entry's text, and the driver name chosen for it.
struct printer_choice {
    bool redirect = false;
    std::string driver;
};
// Looks name + "=" up in the first characters of the entry text (a plain substring
// search, so "lp" is also found inside "xlp="). The driver is the text between the next
// two double quotes, "" when there are not two.
printer_choice find_printer_choice(const std::string& entry_text, const std::string& name);

struct printer_row {
    std::string name;
    std::string driver;
};
// name="driver" items joined by ",".
std::string printer_selection(const std::vector<printer_row>& chosen);
