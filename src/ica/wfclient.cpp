#include "ica/wfclient.h"

#include "platform/file.h"
#include "platform/message.h"
#include "platform/shell_command.h"
#include "platform/tmp_files.h"
#include "store/ica_paths.h"

#include <cstdio>
#include <unistd.h>

namespace {

void report(const char* message) { show_error(message); }

// The whole file, or false when it cannot be opened.
bool slurp(const std::string& path, std::string* text)
{
    unique_file file = open_file(path, "re");
    if (!file)
        return false;
    text->clear();
    char chunk[4096];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, file.get())) > 0)
        text->append(chunk, got);
    return !std::ferror(file.get());
}

// Writes text to path; false (and nothing left behind) when it was not written whole.
bool write_whole(const std::string& path, const std::string& text, const char* message)
{
    unique_file file = open_file(path, "we");
    if (!file) {
        report(message);
        return false;
    }
    const bool whole = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                       std::fflush(file.get()) == 0 && !std::ferror(file.get());
    file.reset();
    if (!whole) {
        unlink(path.c_str());
        report(message);
    }
    return whole;
}

}  // namespace

int ica_make_default_wfclient()
{
    // Without a client folder there is no copy of the client's own file to take.
    if (!ica_root.empty() &&
        run_shell_command("cp " + shell_quote(ica_root + "/config/wfclient.ini") + " " +
                          shell_quote(ica_dir)) == 0)
        return 1;
    return write_whole(wfclient_file, default_wfclient_text,
                       "\nCitrix wfclient.ini file not found and can't be created.\n")
               ? 1
               : 0;
}

std::string wfclient_text()
{
    std::string text;
    slurp(wfclient_file, &text);
    return text;
}

bool read_wfclient(std::string* text)
{
    if (slurp(wfclient_file, text))
        return true;
    if (!ica_make_default_wfclient()) {
        report("\nCouldn't create Citrix wfclient.ini file.\n");
        return false;
    }
    if (slurp(wfclient_file, text))
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
    if (!write_whole(copy, change(text), "\nCouldn't open tmp Citrix wfclient.ini file.\n"))
        return false;
    // A failing copy back is not reported. It only ever starts from a temporary copy
    // that was written whole.
    run_shell_command("cp " + shell_quote(copy) + " " + shell_quote(wfclient_file));
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
    if (!slurp(output, &text))
        return false;
    *names = read_published_names(text);
    return true;
}
