#pragma once
// appsrv.ini, the Citrix client's list of application servers: one section per ICA
// connection of the master list, rewritten whole with every save of the list.
#include "store/record.h"

#include <cstdio>
#include <string>

// "[WFClient]" header, then "[ApplicationServers]" with one "name=" line per ICA row.
void write_appsrv_header(FILE* file, GtkTreeModel* master);
// Foreach callback of write_appsrv_header: "name=\n" for an ICA row; data is the FILE*.
gboolean file_ica_serverentry(GtkTreeModel* model, GtkTreePath* path, GtkTreeIter* iter,
                              gpointer file);
// The section of one ICA connection, "\n[name]\n" and its keys.
std::string ica_section(const connection_record& record);
