#pragma once
// Saving the master list: backup, rewrite of the master file and appsrv.ini, restore
// of the backup when the master file cannot be written.

inline constexpr const char* master_backup_path = "/tmp/.kestrel/kestrel.bak";

void save_master_connections();
