// The RDP editor and its printer window, driven as the administrator drives them.
#include "gui/admin_fixture.h"

#include "editors/editors.h"
#include "editors/rdp_editor.h"
#include "shell/globals.h"

namespace {

constexpr const char* title = "rdesktop connection";

class rdp_editor_test : public admin_test {
protected:
    GtkWidget* open_rdp(const std::string& name = "") { return open(rd_dialog, title, name, "RDP"); }
    GtkWidget* printers() const { return find_window("Printers"); }
    GtkListStore* printer_table() const
    {
        return GTK_LIST_STORE(gtk_tree_view_get_model(GTK_TREE_VIEW(named(printers(), "printer_table"))));
    }
    void tick(const char* row) { rd_printcap_enable_cb(nullptr, const_cast<gchar*>(row), printer_table()); }
    // The tick, the name and the driver of every printer row.
    std::string printer_rows() const { return dump_model(GTK_TREE_MODEL(printer_table()), {0, 1, 2}); }
};

TEST_F(rdp_editor_test, presets_set_the_boxes_and_the_boxes_name_the_preset)
{
    GtkWidget* w = open_rdp();
    screenshot_pages(w, "tabs", "rdp-editor-");
    auto boxes = [&] {
        std::string on;
        for (const char* box : {"background", "dragging", "animation", "themes"})
            on += box_on(w, box) ? "1" : "0";
        return on;
    };
    EXPECT_EQ(text_of(w, "experience") + " " + boxes(), "Modem (56 Kbps) 0001");
    // A preset chosen sets the boxes; a box changed names the preset the boxes make.
    const struct { const char* control; const char* value; const char* shown; } steps[] = {
        {"experience", "LAN (10 Mbps or higher)", "LAN (10 Mbps or higher) 1111"},
        {"experience", "Modem (28.8 Kbps)", "Modem (28.8 Kbps) 0000"},
        {"experience", "Broadband (128 Kbps - 1.5 Mbps)", "Broadband (128 Kbps - 1.5 Mbps) 0111"},
        {"experience", "Custom", "Custom 0111"},
        {"experience", "Modem (56 Kbps)", "Modem (56 Kbps) 0001"},
        {"background", "on", "Custom 1001"},
        {"themes", "off", "Custom 1000"},
        {"background", "off", "Modem (28.8 Kbps) 0000"},
        {"themes", "on", "Modem (56 Kbps) 0001"},
        {"dragging", "on", "Custom 0101"},
        {"animation", "on", "Broadband (128 Kbps - 1.5 Mbps) 0111"},
        {"background", "on", "LAN (10 Mbps or higher) 1111"},
    };
    for (const auto& step : steps) {
        if (std::string(step.control) == "experience")
            type_text(w, "experience", step.value);
        else
            set_box(w, step.control, std::string(step.value) == "on");
        EXPECT_EQ(text_of(w, "experience") + " " + boxes(), step.shown) << step.control << " " << step.value;
    }
    type_text(w, "name", "Fast");
    click(w, "_Save");
    EXPECT_EQ(master_row("Fast", "RDP")[MC_RDP_FLAGS], "05056");  // compression and all four
}

TEST_F(rdp_editor_test, printer_window_reads_printcap_and_fills_the_entry)
{
    GtkWidget* w = open_rdp();
    set_box(w, "printers", true);
    EXPECT_EQ(messages->shown, texts{"\nCouldn't open printcaps.\n"});
    EXPECT_TRUE(box_on(w, "printers"));
    set_box(w, "printers", false);

    write_file(root / "etc/printcap",
               "# printers\nlp|laser|Hall laser:\\\n\t:sd=/var/spool/lp:\ncolour:\nxlp:\nbig office:\n");
    set_box(w, "printers", true);
    ASSERT_NE(printers(), nullptr);
    EXPECT_FALSE(gtk_widget_get_visible(w));
    EXPECT_EQ(printer_rows(), "FALSE|lp|\nFALSE|colour|\nFALSE|xlp|\n");
    save_screenshot(printers(), "rdp_printers");
    click(printers(), "_Cancel");
    EXPECT_FALSE(box_on(w, "printers")) << "Cancel before any Save turns the box off";
    EXPECT_TRUE(gtk_widget_get_visible(w));

    set_box(w, "printers", true);
    tick("1");
    tick("2");
    rd_printcap_editable_cb(nullptr, const_cast<gchar*>("2"), const_cast<gchar*>("HP LaserJet 4"), printer_table());
    click(printers(), "_Save");
    EXPECT_EQ(text_of(w, "printers_value"), "colour=\"\",xlp=\"HP LaserJet 4\"");

    // Reopened: the earlier choices come back, and lp is found inside "xlp=".
    set_box(w, "printers", false);
    set_box(w, "printers", true);
    EXPECT_EQ(printer_rows(), "TRUE|lp|HP LaserJet 4\nTRUE|colour|\nTRUE|xlp|HP LaserJet 4\n");
    click(printers(), "_Cancel");
    EXPECT_TRUE(box_on(w, "printers")) << "Cancel after a Save keeps the box on";

    set_box(w, "printers", false);
    set_box(w, "printers", true);
    for (const char* row : {"0", "1", "2"})
        tick(row);
    click(printers(), "_Save");
    EXPECT_EQ(text_of(w, "printers_value"), "");
    EXPECT_FALSE(box_on(w, "printers"));
    type_text(w, "printers_value", "lp=\"kept only while on\"");
    type_text(w, "name", "Printing");
    click(w, "_Save");
    EXPECT_EQ(master_row("Printing", "RDP")[MC_RDP_PRINTER], "");
}

// A frame picture is shown only when the theme folder has it; none is no warning.
TEST_F(rdp_editor_test, frame_pictures_come_from_the_theme_folder)
{
    for (const auto& [debian_set, folder] : {std::pair{1, "usr/share/pixmaps/"}, {0, "usr/share/xfce4/themes/Curve/"}}) {
        debian = debian_set;
        make_dirs(root / folder);
        GdkPixbuf* picture = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, 16, 16);
        gdk_pixbuf_save(picture, (root / folder + "terminal.png").c_str(), "png", nullptr, nullptr);
        g_object_unref(picture);
        GtkWidget* w = open_rdp();
        EXPECT_TRUE(find_named_widget(w, "terminal.png")) << folder;
        EXPECT_FALSE(find_named_widget(w, "print.png")) << folder;
        click(w, "_Cancel");
        std::remove((root / folder + "terminal.png").c_str());
    }
    EXPECT_TRUE(messages->shown.empty());
}

}  // namespace
