#pragma once
// What start-up does in threads of its own while the toolkit starts: the support
// directory and the instance file, and the reading of the master list. Each result is
// taken where start-up used to make it, so that messages and their order stay the same.

// Starts the threads; they are waited for before the program ends.
void start_early_work();
// Waits for the support directory and the instance file; on failure tells the user and
// ends the program with status 1.
void finish_support_files();
// Applies the master list's header and makes both user trees, still empty.
void take_master_header();
// Loads the running user's tree, each group expanded in the main window as it comes in.
void load_user_tree();
// Waits for the master list and makes it master_connection_list.
void take_master_list();
