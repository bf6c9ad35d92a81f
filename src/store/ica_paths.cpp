#include "store/ica_paths.h"

std::string ica_dir = config_dir;
std::string wfclient_file = ica_dir + "/wfclient.ini";
std::string ica_root;

void set_ica_dir(const std::string& dir)
{
    ica_dir = dir;
    wfclient_file = ica_dir + "/wfclient.ini";
}
