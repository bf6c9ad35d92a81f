#include "shell/globals.h"

int show_gui = 1;
int shell_mode = 0;
int show_taskbar = 0;
int kiosk_mode = 0;
int wizard_mode = 0;
int das = 0;
int firefox = 0;
int user_has_root = 0;
int allow_reboot = 0;
int allow_turnoff = 0;
int dialog_up = 0;
int debian = 0;
int use_instance_file = 0;

std::string instance_file;
std::string tmp_dir = "/tmp/.kestrel";
std::string ica_dir = "/etc/.kestrel";
std::string wfclient_file = "/etc/.kestrel/wfclient.ini";
std::string ica_root;
std::string x_setup_file;
std::string x_config_file;
std::string current_user_name;
std::string selected_user_name;
std::string current_user_filename;
std::string home_dir;

char* connect_info = nullptr;
GtkWidget** misc_widgets = nullptr;
char seedchars[64] = {};

GtkListStore* master_connection_list = nullptr;
GtkTreeStore* current_user_connection_tree = nullptr;
GtkTreeStore* selected_user_connection_tree = nullptr;

GtkWidget* root_window = nullptr;
GtkWidget* error_dialog = nullptr;
GtkWidget* error_label = nullptr;
GtkWidget* reconnect_dialog = nullptr;
GtkWidget* reconnect_label = nullptr;
