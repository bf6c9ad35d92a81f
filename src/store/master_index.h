#pragma once
// Finding a master row by its name and type without walking the whole list: every row of
// a user file and every launch looks one up.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// Finds the first master row of (name, type); exact, case-sensitive comparison. An index
// kept with the list answers, built again on the first look-up after the list changes.
bool find_master_row(GtkListStore* list, const std::string& name, const std::string& type,
                     GtkTreeIter* found);
// A row of a master list by its name and type.
struct master_row_ref {
    std::string name;
    std::string type;
    GtkTreeIter iter;
};
// Hands the index every row of a list just filled, in list order, so that the first
// look-up need not read them back from the list.
void index_filled_list(GtkListStore* list, const std::vector<master_row_ref>& rows);
// Brings the list's index up to date now, so that a later look-up (in a launch's child)
// does not have to.
void prepare_master_index(GtkListStore* list);
