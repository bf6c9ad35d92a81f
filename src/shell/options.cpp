#include "shell/options.h"

#include "platform/file.h"
#include "platform/line_reader.h"
#include "platform/log.h"
#include "platform/message.h"
#include "platform/paths.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "platform/whole_file.h"
#include "shell/globals.h"
#include "store/models.h"
#include "store/options_text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* options_temp_file = "/tmp/zarvooptions.tmp";
constexpr const char* icewm_preferences = "/etc/X11/icewm/preferences";
constexpr const char* preferences_temp_file = "/tmp/preferences";

// Keys as they are searched for (in a lower-case copy of the line) and written.
constexpr const char* taskbar_assignment = "show_taskbar=";
constexpr const char* kiosk_assignment = "kiosk_browser=";
constexpr const char* written_taskbar_key = "SHOW_TASKBAR=";
constexpr const char* written_kiosk_key = "KIOSK_BROWSER=";

constexpr const char* write_error_message =
    "\nError writing Zarvo options temporary configuration file, changes not saved.\n";
constexpr const char* move_error_message =
    "\nError saving Zarvo options configuration file, changes not saved.\n";
constexpr const char* temp_gone_message =
    "\nError opening Zarvo options temporary configuration file, changes not saved.\n";

bool contains(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

const char* true_false(int flag) { return flag ? "TRUE" : "FALSE"; }

// A directory counts as no options file, so that saving cannot replace the settings by
// the two keys alone.
unique_file open_options_for_reading() { return open_text_file(root_path(options_file)); }

void apply_options_line(const std::string& line)
{
    const options_line_effect effect = read_options_line(line);
    if (effect.shell_mode >= 0)
        shell_mode = effect.shell_mode;
    if (effect.show_taskbar >= 0)
        show_taskbar = effect.show_taskbar;
    if (effect.kiosk_mode >= 0)
        kiosk_mode = effect.kiosk_mode;
}

struct keys_seen {
    bool taskbar = false;
    bool kiosk = false;
    bool line_ended = true;  // the copy so far ends with a line end (or is empty)
};

// A key line keeps as many of its first characters as the key has (the key as
// written, in its own case) and gets the flag's value.
void write_key_line(const std::string& piece, const char* key, int flag, FILE* out)
{
    const std::string kept = piece.substr(0, std::strlen(key));
    std::fprintf(out, "%s%s\n", kept.c_str(), true_false(flag));
}

// Other lines are written verbatim, not used as a format: a percent sign in a line
// is copied instead of being interpreted.
void copy_options_line(const std::string& piece, FILE* out, keys_seen& seen)
{
    const std::string lower = lower_case(piece);
    if (contains(lower, taskbar_assignment)) {
        seen.taskbar = true;
        write_key_line(piece, taskbar_assignment, show_taskbar, out);
        seen.line_ended = true;
    } else if (contains(lower, kiosk_assignment)) {
        seen.kiosk = true;
        write_key_line(piece, kiosk_assignment, kiosk_mode, out);
        seen.line_ended = true;
    } else if (!piece.empty()) {
        std::fputs(piece.c_str(), out);
        seen.line_ended = piece.back() == '\n';
    }
}

// An appended key starts a line of its own, even after a last line without a line end.
void append_missing_keys(const keys_seen& seen, FILE* out)
{
    if (!seen.line_ended && (!seen.taskbar || !seen.kiosk))
        std::fputc('\n', out);
    if (!seen.taskbar)
        std::fprintf(out, "%s%s\n", written_taskbar_key, true_false(show_taskbar));
    if (!seen.kiosk)
        std::fprintf(out, "%s%s\n", written_kiosk_key, true_false(kiosk_mode));
}

// Closes the copy; false when any write to it failed, buffered ones included.
bool close_cleanly(unique_file out)
{
    bool failed = std::fflush(out.get()) != 0 || std::ferror(out.get());
    failed = std::fclose(out.release()) != 0 || failed;
    return !failed;
}

// The copy in /tmp may lie on another file system than the options file, where a move
// would write it anew and could be cut short by a full disk. It is therefore put in
// place whole, beside the options file, and only then taken away as the move would.
void replace_options_file(const std::string& temp_path)
{
    if (!is_regular_file(temp_path)) {
        show_error(temp_gone_message);
        return;
    }
    std::string text;
    if (!read_whole_file(temp_path, &text) || !replace_file(root_path(options_file), text)) {
        show_error(move_error_message);
        return;
    }
    unlink(temp_path.c_str());
}

}  // namespace

void parse_zarvooptions()
{
    unique_file in = open_options_for_reading();
    if (!in)
        return;
    line_reader reader(in.get(), long_line::pieces);
    while (reader.read())
        apply_options_line(reader.text());
}

void write_zarvooptions()
{
    unique_file in = open_options_for_reading();
    if (!in)
        return;
    const std::string temp_path = root_path(options_temp_file);
    unique_file out = open_fresh_file(temp_path);
    if (!out)
        return;
    keys_seen seen;
    line_reader reader(in.get(), long_line::pieces);
    while (reader.read())
        copy_options_line(reader.text(), out.get(), seen);
    in.reset();
    append_missing_keys(seen, out.get());
    if (!close_cleanly(std::move(out))) {
        show_error(write_error_message);
        return;
    }
    replace_options_file(temp_path);
}

// Only Debian systems carry the IceWM preferences this edits, so the check lives here
// rather than with each caller.
void set_icewm_taskbar(int show)
{
    if (!debian)
        return;
    const std::string preferences = root_path(icewm_preferences);
    const std::string temp_path = root_path(preferences_temp_file);
    const std::string edit = std::string("sed '/ShowTaskBar/cShowTaskBar=") + (show ? "1" : "0") +
                             "' " + shell_quote(preferences) + " > " + shell_quote(temp_path);
    // The shell's redirection would follow a link planted in /tmp: the file is made
    // afresh first, and a name that cannot be made so ends the change silently.
    const int fresh = create_fresh_file(temp_path);
    if (fresh < 0)
        return;
    close(fresh);
    std::string text;
    if (run_shell_command(edit) == 0 && read_whole_file(temp_path, &text) && !replace_file(preferences, text))
        log_printf("Could not replace %s\n", preferences.c_str());
}
