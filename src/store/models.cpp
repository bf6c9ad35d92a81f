#include "store/models.h"

GtkListStore* master_connection_list = nullptr;
GtkTreeStore* current_user_connection_tree = nullptr;
GtkTreeStore* selected_user_connection_tree = nullptr;
std::string current_user_filename;

int show_gui = 1;
int show_taskbar = 0;
int kiosk_mode = 0;
