#pragma once
// The X and rdesktop keyboard map lists, built once at start-up from the local
// system's files and offered by the editors; the launcher passes them on.
#include <gtk/gtk.h>
#include <string>

enum keymap_col : int { KM_CODE = 0, KM_DESCRIPTION = 1 };

extern GtkListStore* keymap_list;           // X layouts: code, description
extern int x11_keymap;                      // 1 when keymap_list came from an xkb file
extern std::string x_rules_file;            // the xkb rules list
extern GtkListStore* rdesktop_keymap_list;  // rdesktop maps: file name, display name
extern std::string rdesktop_keymap_dir;     // the rdesktop keymap folder

int make_x_keymap();
int make_rdesktop_keymap();
int read_file(const char* path);
