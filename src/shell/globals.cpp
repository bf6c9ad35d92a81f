#include "shell/globals.h"

int shell_mode = 0;
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
std::string current_user_name;
std::string selected_user_name;

GtkWidget** misc_widgets = nullptr;

GtkWidget* root_window = nullptr;
GtkWidget* error_dialog = nullptr;
GtkWidget* error_label = nullptr;
GtkWidget* reconnect_dialog = nullptr;
GtkWidget* reconnect_label = nullptr;
