#pragma once
// Shared by the launcher tests: records and keyboard map lists.
#include "keymaps/keymaps.h"
#include "store/record.h"
#include "support/test_support.h"

using column_values = std::initializer_list<std::pair<int, const char*>>;

inline connection_record make_record(const std::string& name, const std::string& type, column_values values = {},
                                     bool ping_first = false)
{
    connection_record record;
    record.ping_first = ping_first;
    record[MC_NAME] = name;
    record[MC_TYPE] = type;
    for (const auto& [column, text] : values)
        record[column] = text;
    return record;
}

// A keyboard map list of (code, display name) rows; the GUI tests use it too.
inline GtkListStore* make_keymap_list(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    GtkListStore* list = gtk_list_store_new(2, G_TYPE_STRING, G_TYPE_STRING);
    for (const auto& [code, name] : rows)
        gtk_list_store_insert_with_values(list, nullptr, -1, KM_CODE, code, KM_DESCRIPTION, name, -1);
    return list;
}
