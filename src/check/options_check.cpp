#include "check/checks.h"

#include "platform/file.h"
#include "store/options_text.h"

namespace {

struct option_key {
    const char* name;  // as searched for in the line in lower case
    int options_line_effect::*setting;
};
constexpr option_key assigned_keys[] = {
    {"show_taskbar", &options_line_effect::show_taskbar},
    {"kiosk_browser", &options_line_effect::kiosk_mode},
};

// What an assignment of key on this line says: 1 for a value beginning with "true", 0
// for any other, -1 when the line is no assignment of it.
int assigned_value(const std::string& lower, const std::string& key)
{
    const size_t start = lower.find_first_not_of(" \t");
    if (start == std::string::npos)
        return -1;
    std::string rest = lower.substr(start);
    if (rest.starts_with("export "))
        rest = rest.substr(7);
    if (!rest.starts_with(key + "="))
        return -1;
    std::string value = rest.substr(key.size() + 1);
    if (!value.empty() && (value[0] == '"' || value[0] == '\''))
        value = value.substr(1);
    return value.starts_with("true");
}

const char* flag_text(int value) { return value ? "TRUE" : "FALSE"; }

}  // namespace

void check_options(check_report& report, const file_choice& files)
{
    unique_file file = open_file(files.read_path(options_file), "re");
    if (!file)
        return;
    line_reader reader(file.get(), long_line::pieces);
    while (reader.read()) {
        const options_line_effect effect = read_options_line(reader.text());
        const std::string lower = lower_case(reader.text());
        for (const option_key& key : assigned_keys) {
            const int sets = effect.*key.setting;
            if (sets < 0)
                continue;
            const int says = assigned_value(lower, key.name);
            if (says < 0)
                report.fail(options_file, reader.line_number(),
                            std::string("line mentions ") + key.name + " and so sets it to " + flag_text(sets));
            else if (says != sets)
                report.fail(options_file, reader.line_number(),
                            std::string("line assigns ") + key.name + " " + flag_text(says) +
                                " but sets it to " + flag_text(sets) + ": the word \"true\" stands elsewhere on it");
        }
    }
}
