#pragma once
// The Name column of a connection list, sized to its widest name without measuring every
// row before the window maps.
#include <gtk/gtk.h>

// Every row is one line of text, so the list takes the first row's height for all rows
// and its columns have set widths: nothing is measured row by row before the window
// maps. A name wider than the Name column's minimum still shows whole: once the list is
// mapped, and for every row added or changed later, the column (the view's first)
// widens to the widest name, as a column sized to its contents would.
void fit_name_column(GtkTreeView* view);
