#include "editors/rdp_rules.h"

#include "platform/line_reader.h"
#include "store/choices.h"

#include <cstring>

const char* experience_for_bits(unsigned long flags)
{
    for (const experience_preset& preset : rdp_experiences)
        if ((flags & rdp_experience_bits) == preset.allowed)
            return preset.text;
    return rdp_custom_experience;
}

unsigned long bits_for_experience(const std::string& preset, unsigned long flags)
{
    for (const experience_preset& p : rdp_experiences)
        if (preset == p.text)
            return (flags & ~rdp_experience_bits) | p.allowed;
    return flags;
}

namespace {

// The printer name of one printcap line, or false when the line names none.
bool printcap_line_name(const char* line, std::string* name)
{
    std::string text(line, std::strcspn(line, "#"));
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        return false;
    text.resize(colon);
    text.resize(text.find('|') == std::string::npos ? text.size() : text.find('|'));
    // An indented line continues the entry above it; names hold no blanks.
    if (text.find_first_of("\t ") != std::string::npos)
        return false;
    *name = text;
    return true;
}

}  // namespace

std::vector<std::string> printcap_names(FILE* printcap)
{
    std::vector<std::string> names;
    // Each piece of an over-long line is taken as a line of its own.
    line_reader reader(printcap, long_line::pieces);
    std::string name;
    while (reader.read())
        if (printcap_line_name(reader.c_str(), &name))
            names.push_back(name);
    return names;
}

printer_choice find_printer_choice(const std::string& entry_text, const std::string& name)
{
    // The entry text is searched as a line of the program's files is: its first
    // characters only.
    const std::string text = entry_text.substr(0, line_buffer_size);
    const size_t found = text.find(name + "=");
    if (found == std::string::npos)
        return {};
    printer_choice choice{true, ""};
    const size_t open = text.find('"', found + name.size() + 1);
    const size_t close = open == std::string::npos ? open : text.find('"', open + 1);
    if (close != std::string::npos)
        choice.driver = text.substr(open + 1, close - open - 1);
    return choice;
}

std::string printer_selection(const std::vector<printer_row>& chosen)
{
    std::string selection;
    for (const printer_row& row : chosen) {
        if (!selection.empty())
            selection += ",";
        selection += row.name + "=\"" + row.driver + "\"";
    }
    return selection;
}
