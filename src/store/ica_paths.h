#pragma once
// Where the Citrix files are: the ICA client's installation and the folder of the
// appsrv.ini and wfclient.ini that this program writes. Start-up sets them.
#include <string>

// The program's configuration folder: the master list, appsrv.ini, wfclient.ini, help.
inline constexpr const char* config_dir = "/etc/.kestrel";

extern std::string ica_dir;        // config_dir, root prefix applied
extern std::string wfclient_file;  // ica_dir + "/wfclient.ini"
extern std::string ica_root;       // the Citrix client's installation directory

// Makes dir (a resolved path) the folder of appsrv.ini and wfclient.ini.
void set_ica_dir(const std::string& dir);
