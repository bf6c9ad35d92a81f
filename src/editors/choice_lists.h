#pragma once
// The choice lists the editors build from the data they are given: the servers already
// used by connections of a type, and the keyboard maps in display order.
#include <gtk/gtk.h>

#include <string>
#include <vector>

// Distinct texts (equal without regard to case count once, the first spelling kept),
// in descending case-insensitive order.
std::vector<std::string> distinct_descending(const std::vector<std::string>& texts);
// texts in ascending case-insensitive order; equal texts keep their order.
std::vector<std::string> sorted_ignoring_case(std::vector<std::string> texts);

// Column column of every master row of the given type, in list order.
std::vector<std::string> master_texts_of_type(GtkTreeModel* master, const char* type, int column);
// The display names (column 1) of a keyboard map list, in list order; none for a null list.
std::vector<std::string> keymap_names(GtkListStore* list);
