// Saves killed at random instants, as by a power cut or the memory guard: every file a
// save writes is afterwards byte for byte the one before or the one after, never cut.
#include "store/ica_paths.h"
#include "store/models.h"
#include "store/save.h"
#include "store/user_file.h"
#include "support/test_support.h"

#include <chrono>
#include <random>

namespace {

// A master list and a user tree of rows of every type (ICA rows give appsrv.ini
// sections), named after variant.
struct connections {
    GtkListStore* list = create_master_store();
    GtkTreeStore* tree = create_user_tree_store();
    connections(const std::string& variant, int rows)
    {
        const char* types[] = {"RDP", "ICA", "Web"};
        for (int i = 0; i < rows; ++i) {
            connection_record record;
            record.col = {variant + std::to_string(i), types[i % 3], "", "3389", "1", "server" + std::to_string(i)};
            record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
            insert_master_row(list, -1, record);
            GtkTreeIter row;
            gtk_tree_store_insert_with_values(tree, &row, nullptr, -1, TC_PRIMARY, TRUE, TC_NAME, record[MC_NAME].c_str(),
                                              TC_TYPE, types[i % 3], -1);
        }
    }
    void save() const
    {
        save_master_connections(GTK_TREE_MODEL(list), current_master_settings());
        save_user_connections(GTK_TREE_MODEL(tree), "ann");
    }
};

using killed_save = rooted_test;

TEST_F(killed_save, every_file_is_whole_before_or_after)
{
    const int runs = getenv("KESTRELLE_KILLS") ? atoi(getenv("KESTRELLE_KILLS")) : 150;
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd", "ann:x:1000:1000::/home/ann:/bin/sh\n");
    ica_dir = root / "etc/.kestrel";
    // The master list, its backup, appsrv.ini and the user's tree.
    const auto on_disk = [&] {
        std::vector<std::string> files;
        for (const char* file : {"etc/.kestrel/kestrel.master", "tmp/.kestrel/kestrel.bak", "etc/.kestrel/appsrv.ini",
                                 "home/ann/kestrel.inf"})
            files.push_back(read_file_text(root / file));
        return files;
    };
    const connections lists[] = {{"Alpha", 1000}, {"Beta", 1200}};
    lists[1].save();
    const auto start = std::chrono::steady_clock::now();
    lists[0].save();
    const auto save_time = std::chrono::steady_clock::now() - start;
    const std::vector<std::string> a = on_disk();
    lists[1].save();
    const std::vector<std::string> b = on_disk();

    std::mt19937 random(42);
    std::uniform_int_distribution<long> delay(0, std::chrono::duration_cast<std::chrono::microseconds>(save_time).count() * 6 / 5);
    int inside = 0;
    for (int run = 0; run < runs; ++run) {
        const connections& next = on_disk()[0] == b[0] ? lists[0] : lists[1];
        const pid_t child = fork();
        if (child == 0) {
            next.save();
            _exit(0);
        }
        usleep(static_cast<useconds_t>(delay(random)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        inside += WIFSIGNALED(status);
        const std::vector<std::string> now = on_disk();
        for (size_t i = 0; i < now.size(); ++i) {
            const size_t as = i == 1 ? 0 : i;  // the backup is a master list
            EXPECT_TRUE(now[i] == a[as] || now[i] == b[as]) << "kill " << run << " left file " << i << " cut";
        }
    }
    std::printf("%d kills, %d inside a save\n", runs, inside);
    EXPECT_GT(inside, runs / 4) << "the kills missed the saves";

    // A save after the kills leaves no temporary file behind.
    lists[0].save();
    EXPECT_TRUE(messages.shown.empty());
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
        for (const auto& entry : std::filesystem::directory_iterator(root / dir))
            EXPECT_FALSE(entry.path().filename().string().ends_with(".new")) << entry.path();
}

}  // namespace
