#pragma once
// Saving the master list: backup, rewrite of the master file and appsrv.ini, restore
// of the backup when the master file cannot be written.
#include "store/master_file.h"

inline constexpr const char* master_backup_path = "/tmp/.kestrel/kestrel.bak";

// Writes list and the header settings to the master file and the list's ICA
// connections to appsrv.ini; every outcome is told in the shared error dialog. Each
// file on disk is at every instant either the old one or the new one, whole.
void save_master_connections(GtkTreeModel* list, const master_settings& settings);
