#pragma once
// The thin client's shell options file, "/etc/zarvooptions": read at start-up, two
// settings written back by the administration dialog.
#include <string>

// Sets shell_mode, show_taskbar and kiosk_mode from the file; a missing file leaves them.
void parse_zarvooptions();
// Writes show_taskbar and kiosk_mode back into the file through a temporary copy.
void write_zarvooptions();
// Shows or hides the window manager's taskbar in its preferences file.
void set_icewm_taskbar(int show);
