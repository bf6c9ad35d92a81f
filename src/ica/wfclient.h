#pragma once
// The Citrix client's global file on disk: creating wfclient.ini, reading it and
// rewriting it through a temporary copy; and the client's pnabrowse lists. The text
// rules themselves are in store/wfclient_text.h.
#include "store/wfclient_text.h"

#include <functional>
#include <string>
#include <vector>

// Makes wfclient_file when it is missing: a copy of the client's own file, else the
// nine default lines. 1 when the file exists afterwards; 0 (after telling the user)
// when it could not be made.
int ica_make_default_wfclient();
// The file's text as it is ("" when it cannot be opened).
std::string wfclient_text();
// The file's text, making the file first when it cannot be opened. False, after the
// messages, when it still cannot be made or read.
bool read_wfclient(std::string* text);
// Rewrites wfclient_file through tmp_dir + "/wfclient.ini" and "cp" back. The file is
// only copied back when the temporary copy was written whole. False after a message.
bool rewrite_wfclient(const std::function<std::string(const std::string&)>& change);

// Published applications and servers, as the client's pnabrowse lists them.
// The shell command that writes the names of servers ("-S") or of published
// applications ("-A") offered at address into output.
std::string pnabrowse_command(bool servers, const std::string& address, const std::string& output);
// Runs pnabrowse into tmp_dir + "/icalist" and reads it. False, silently, when the
// command fails or its output cannot be opened.
bool ica_published_names(bool servers, const std::string& address, std::vector<std::string>* names);

