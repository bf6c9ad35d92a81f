#include "store/ica_paths.h"

std::string ica_dir = "/etc/.kestrel";
std::string wfclient_file = "/etc/.kestrel/wfclient.ini";
std::string ica_root;
