#include "editors/choice_lists.h"

#include "keymaps/keymaps.h"
#include "store/record.h"

#include <algorithm>

namespace {

bool less_ignoring_case(const std::string& a, const std::string& b)
{
    return g_ascii_strcasecmp(a.c_str(), b.c_str()) < 0;
}

bool equal_ignoring_case(const std::string& a, const std::string& b)
{
    return g_ascii_strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::vector<std::string> column_texts(GtkTreeModel* model, int column, const char* type)
{
    std::vector<std::string> texts;
    if (!model)
        return texts;
    GtkTreeIter iter;
    for (bool more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter))
        if (!type || model_text(model, &iter, MC_TYPE) == type)
            texts.push_back(model_text(model, &iter, column));
    return texts;
}

}  // namespace

std::vector<std::string> distinct_descending(const std::vector<std::string>& texts)
{
    std::vector<std::string> distinct;
    for (const std::string& text : texts)
        if (std::none_of(distinct.begin(), distinct.end(),
                         [&](const std::string& taken) { return equal_ignoring_case(taken, text); }))
            distinct.push_back(text);
    distinct = sorted_ignoring_case(std::move(distinct));
    std::reverse(distinct.begin(), distinct.end());
    return distinct;
}

std::vector<std::string> sorted_ignoring_case(std::vector<std::string> texts)
{
    std::stable_sort(texts.begin(), texts.end(), less_ignoring_case);
    return texts;
}

std::vector<std::string> master_texts_of_type(GtkTreeModel* master, const char* type, int column)
{
    return column_texts(master, column, type);
}

std::vector<std::string> keymap_names(GtkListStore* list)
{
    return column_texts(list ? GTK_TREE_MODEL(list) : nullptr, KM_DESCRIPTION, nullptr);
}
