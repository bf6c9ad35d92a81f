#include "ica/wfclient.h"

#include "platform/file.h"
#include "platform/log.h"
#include "platform/message.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "platform/whole_file.h"
#include "store/ica_paths.h"

#include <cstdio>
#include <unistd.h>

namespace {

void report(const char* message) { show_error(message); }

// Replaces path with text whole; false, after the message, when it could not.
bool write_whole(const std::string& path, const std::string& text, const char* message)
{
    if (replace_file(path, text))
        return true;
    report(message);
    return false;
}

}  // namespace

int ica_make_default_wfclient()
{
    // Without a client folder there is no copy of the client's own file to take.
    std::string client_text;
    if (!ica_root.empty() && read_whole_file(ica_root + "/config/wfclient.ini", &client_text) &&
        replace_file(wfclient_file, client_text))
        return 1;
    return write_whole(wfclient_file, default_wfclient_text,
                       "\nCitrix wfclient.ini file not found and can't be created.\n")
               ? 1
               : 0;
}

std::string wfclient_text()
{
    std::string text;
    read_whole_file(wfclient_file, &text);
    return text;
}

bool read_wfclient(std::string* text)
{
    if (read_whole_file(wfclient_file, text))
        return true;
    if (!ica_make_default_wfclient()) {
        report("\nCouldn't create Citrix wfclient.ini file.\n");
        return false;
    }
    if (read_whole_file(wfclient_file, text))
        return true;
    report("\nCitrix wfclient.ini file can't be read.\n");
    return false;
}

bool rewrite_wfclient(const std::function<std::string(const std::string&)>& change)
{
    std::string text;
    if (!read_wfclient(&text))
        return false;
    const std::string copy = tmp_dir + "/wfclient.ini";
    const std::string changed = change(text);
    if (!write_whole(copy, changed, "\nCouldn't open tmp Citrix wfclient.ini file.\n"))
        return false;
    // The copy back is not reported to the user, but it replaces the file whole or not
    // at all: a cut wfclient.ini would lose the client's other settings at every later
    // save.
    if (!replace_file(wfclient_file, changed))
        log_printf("Could not copy %s back onto %s\n", copy.c_str(), wfclient_file.c_str());
    return true;
}

std::string pnabrowse_command(bool servers, const std::string& address, const std::string& output)
{
    return shell_quote(ica_root + "/pnabrowse") + (servers ? " -S " : " -A ") + shell_quote(address) +
           " > " + shell_quote(output);
}

bool ica_published_names(bool servers, const std::string& address, std::vector<std::string>* names)
{
    const std::string output = tmp_dir + "/icalist";
    if (run_shell_command(pnabrowse_command(servers, address, output)) != 0)
        return false;
    std::string text;
    if (!read_whole_file(output, &text))
        return false;
    *names = read_published_names(text);
    return true;
}
