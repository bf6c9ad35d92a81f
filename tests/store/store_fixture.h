#pragma once
// The store tests run in a private root with the program's folders and fresh models.
#include "store/ica_paths.h"
#include "store/master_file.h"
#include "store/models.h"
#include "store/password.h"
#include "store/record.h"
#include "store/save.h"
#include "support/test_support.h"

inline std::string golden(const std::string& name) { return std::string(GOLDEN_DIR) + "/" + name; }

class store_test : public rooted_test {
protected:
    void SetUp() override
    {
        for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
            make_dirs(root / dir);
        write_file(root / "etc/passwd", "ann:x:1000:1000::/home/ann:/bin/sh\n");
        ica_dir = root / "etc/.kestrel";
        current_user_filename = root / "home/ann/kestrel.inf";
        show_gui = 1;
        show_taskbar = kiosk_mode = 0;
        master_connection_list = create_master_store();
        current_user_connection_tree = create_user_tree_store();
        selected_user_connection_tree = create_user_tree_store();
    }
    void TearDown() override
    {
        g_clear_object(&master_connection_list);
        g_clear_object(&current_user_connection_tree);
        g_clear_object(&selected_user_connection_tree);
    }
    std::string master_file() { return read_file_text(root / "etc/.kestrel/kestrel.master"); }
    void save() { save_master_connections(GTK_TREE_MODEL(master_connection_list), current_master_settings()); }
    void add_master(const std::string& name, const std::string& type, std::map<int, std::string> columns = {})
    {
        connection_record record;
        columns[MC_NAME] = name, columns[MC_TYPE] = type;
        for (const auto& [column, value] : columns)
            record[column] = value;
        insert_master_row(master_connection_list, -1, record);
    }
};
