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

struct list_and_tree {
    GtkListStore* list = create_master_store();
    GtkTreeStore* tree = create_user_tree_store();
};

// Rows of every type (ICA rows give appsrv.ini sections), named after variant.
list_and_tree connections(const std::string& variant, int rows)
{
    list_and_tree made;
    const char* types[] = {"RDP", "ICA", "Web"};
    for (int i = 0; i < rows; ++i) {
        connection_record record;
        record.col = {variant + std::to_string(i), types[i % 3], "", "3389", "1", "server" + std::to_string(i)};
        record[MC_RDP_FLAGS] = record[MC_ICA_MASK] = "0";
        insert_master_row(made.list, -1, record);
        GtkTreeIter row;
        gtk_tree_store_insert_with_values(made.tree, &row, nullptr, -1, TC_PRIMARY, TRUE, TC_NAME,
                                          record[MC_NAME].c_str(), TC_TYPE, types[i % 3], -1);
    }
    return made;
}

void save(const list_and_tree& what)
{
    save_master_connections(GTK_TREE_MODEL(what.list), current_master_settings());
    save_user_connections(GTK_TREE_MODEL(what.tree), "ann");
}

TEST(killed_save, every_file_is_whole_before_or_after)
{
    const char* runs_text = getenv("KESTRELLE_KILLS");
    const int runs = runs_text ? atoi(runs_text) : 150;
    temp_dir root;
    scoped_root rooted{root.path()};
    message_recorder messages;
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
        make_dirs(root / dir);
    write_file(root / "etc/passwd", "ann:x:1000:1000::/home/ann:/bin/sh\n");
    ica_dir = root / "etc/.kestrel";
    current_user_filename = root / "home/ann/kestrel.inf";
    // The master list, its backup, appsrv.ini and the user's tree.
    const auto on_disk = [&] {
        std::vector<std::string> files;
        for (const char* file : {"etc/.kestrel/kestrel.master", "tmp/.kestrel/kestrel.bak", "etc/.kestrel/appsrv.ini",
                                 "home/ann/kestrel.inf"})
            files.push_back(read_file_text(root / file));
        return files;
    };
    const list_and_tree lists[] = {connections("Alpha", 1000), connections("Beta", 1200)};
    save(lists[1]);
    const auto start = std::chrono::steady_clock::now();
    save(lists[0]);
    const auto save_time = std::chrono::steady_clock::now() - start;
    const std::vector<std::string> a = on_disk();
    save(lists[1]);
    const std::vector<std::string> b = on_disk();

    std::mt19937 random(42);
    std::uniform_int_distribution<long> delay(0, std::chrono::duration_cast<std::chrono::microseconds>(save_time).count() * 6 / 5);
    int inside = 0;
    for (int run = 0; run < runs; ++run) {
        const bool to_a = on_disk()[0] == b[0];
        int steps[2];
        ASSERT_EQ(pipe(steps), 0);
        const pid_t child = fork();
        if (child == 0) {
            (void)!write(steps[1], "S", 1);
            save(lists[to_a ? 0 : 1]);
            (void)!write(steps[1], "E", 1);
            _exit(0);
        }
        close(steps[1]);
        char said[2] = {};
        ASSERT_EQ(read(steps[0], said, 1), 1);
        usleep(static_cast<useconds_t>(delay(random)));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        inside += read(steps[0], said + 1, 1) != 1;
        close(steps[0]);
        const std::vector<std::string> now = on_disk();
        bool whole = true;
        for (size_t i = 0; i < now.size(); ++i) {
            const size_t as = i == 1 ? 0 : i;  // the backup is a master list
            whole = whole && (now[i] == a[as] || now[i] == b[as]);
        }
        EXPECT_TRUE(whole) << "kill " << run << " left a file cut";
    }
    std::printf("%d kills, %d inside a save\n", runs, inside);
    EXPECT_GT(inside, runs / 4) << "the kills missed the saves";

    // A save after the kills leaves no temporary file behind.
    save(lists[0]);
    EXPECT_TRUE(messages.shown.empty());
    for (const char* dir : {"etc/.kestrel", "tmp/.kestrel", "home/ann"})
        for (const auto& entry : std::filesystem::directory_iterator(root / dir))
            EXPECT_FALSE(entry.path().filename().string().ends_with(".new")) << entry.path();
}

}  // namespace
