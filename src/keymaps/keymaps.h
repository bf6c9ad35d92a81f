#pragma once
// The X and rdesktop keyboard map lists, built once at start-up from the local
// system's files and offered by the editors; the launcher passes them on.
#include <gtk/gtk.h>
#include <string>

enum keymap_col : int { KM_CODE = 0, KM_DESCRIPTION = 1 };

extern GtkListStore* keymap_list;           // X layouts: code, description
extern int x11_keymap;                      // 1 when keymap_list came from an xkb file
extern GtkListStore* rdesktop_keymap_list;  // rdesktop maps: file name, display name
extern std::string rdesktop_keymap_dir;     // the rdesktop keymap folder

// Display names of the rdesktop maps, for folders whose keymap.lst does not name them.
struct rdesktop_keymap_name {
    const char* code;
    const char* name;
};
inline constexpr int rdesktop_keymap_count = 37;
extern const rdesktop_keymap_name rdesktop_keymaps[rdesktop_keymap_count];

// Fills keymap_list from the first X layout source that opens; 1 when one did. With
// none, the error label gets a message for a later error dialog and 0 is returned.
int make_x_keymap();
// Fills rdesktop_keymap_list, "Use Default" first; 1 when the keymap folder opened.
int make_rdesktop_keymap();
// Reads a whole file (the path as given) and drops the contents: 1 when it could be
// read, else 0 after a line on standard output.
int read_file(const char* path);
