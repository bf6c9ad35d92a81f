// The XDM editor, driven as the administrator drives it.
#include "gui/editor_window_fixture.h"

#include "editors/editors.h"
#include "keymaps/keymaps.h"

namespace {

constexpr const char* title = "XDM connection";

class xdm_editor_test : public editor_window_test {
protected:
    GtkWidget* open_xdm(const std::string& name = "") { return open(xdm_dialog, title, name, "XDM"); }
    std::string mode(GtkWidget* w) const
    {
        std::string chosen;
        for (const char* button : {"Broadcast", "Indirect", "Direct"})
            if (box_on(w, button))
                chosen += button;
        return chosen;
    }
};

TEST_F(xdm_editor_test, record_round_trips_through_the_window)
{
    const connection_record records[] = {
        with({}, {{MC_NAME, "Lab"}, {MC_TYPE, "XDM"}, {MC_PING_PORT, "177"}, {MC_PING_VALID, "1"},
                  {MC_SERVER, "lab.example"}, {MC_XDM_MODE, "Query"}, {MC_XDM_VT, "7"}, {MC_XDM_DISPLAY, "2"},
                  {MC_KEYBOARD, "belgian"}, {MC_RDP_FLAGS, "0"}, {MC_ICA_MASK, "0"}}),
        // Texts of another program's making that match no choice are kept.
        with({}, {{MC_NAME, "Odd"}, {MC_TYPE, "XDM"}, {MC_PING_PORT, "0"}, {MC_PING_VALID, "3"},
                  {MC_SERVER, "x"}, {MC_XDM_MODE, "Indirect"}, {MC_XDM_VT, "vt9"}, {MC_XDM_DISPLAY, "12"},
                  {MC_KEYBOARD, "Klingon"}, {MC_RDP_FLAGS, "0"}, {MC_ICA_MASK, "0"}}),
    };
    for (const connection_record& record : records) {
        add_record(record);
        GtkWidget* w = open_xdm(record[MC_NAME]);
        EXPECT_FALSE(gtk_widget_is_sensitive(control(w, "name")));
        click(w, "_Save");
        EXPECT_EQ(find_window(title), nullptr);
        EXPECT_EQ(master_row(record[MC_NAME], "XDM").col, record.col);
    }
    EXPECT_TRUE(messages.shown.empty());
}

TEST_F(xdm_editor_test, lists_and_the_defaults_of_a_new_connection)
{
    for (const auto& [name, type, host] : {std::tuple{"A1", "XDM", "b"}, {"A2", "XDM", "A"},
                                           {"A3", "XDM", "a"}, {"A4", "RDP", "zz"}})
        add_record(with({}, {{MC_NAME, name}, {MC_TYPE, type}, {MC_SERVER, host}}));
    GtkWidget* w = open_xdm();
    EXPECT_EQ(combo_choices(w, "host"), (texts{"b", "A"}));
    EXPECT_EQ(combo_choices(w, "display"), (texts{"1", "2", "3", "4", "5", "6"}));
    EXPECT_EQ(combo_choices(w, "vt").size(), 13u);
    EXPECT_EQ(combo_choices(w, "keymap"),
              (texts{"Use Local Settings", "Use Server Settings", "belgian", "English (US)", "German"}));
    type_text(w, "host", "");
    type_text(w, "name", "A1");
    click(w, "_Save");
    EXPECT_EQ(messages.shown, texts{"\nA connection with that name and type already exists.\n"});
    type_text(w, "name", "New");
    click(w, "_Save");
    const connection_record saved = master_row("New", "XDM");
    const texts expected{"New", "XDM", "", "0", "1", "", "", "Indirect", "", "", "", "", "Automatic", "3",
                         "", "", "", "", "", "", "", "", "", "", "", "", "Use Local Settings", "", "", "",
                         "", "", "", "0", "0", ""};
    EXPECT_EQ(texts(saved.col.begin(), saved.col.end()), expected);
    EXPECT_TRUE(saved.ping_first);
}

TEST_F(xdm_editor_test, query_modes_and_the_host_field)
{
    GtkWidget* w = open_xdm();
    EXPECT_EQ(mode(w), "Indirect");
    type_text(w, "host", "lab");
    set_box(w, "Broadcast", true);
    EXPECT_EQ(text_of(w, "host"), "");
    EXPECT_FALSE(gtk_widget_is_sensitive(control(w, "host")));
    set_box(w, "Direct", true);
    EXPECT_EQ(text_of(w, "host"), "");
    EXPECT_TRUE(gtk_widget_is_sensitive(control(w, "host")));
    click(w, "_Cancel");

    const struct { const char* stored; const char* shown; bool host_open; const char* saved; } modes[] = {
        {"Query", "Direct", true, "Query"},
        {"Broadcast", "Broadcast", false, "Broadcast"},
        {"Indirect", "Indirect", true, "Indirect"},
        {"query", "Indirect", true, "Indirect"},  // a word that names no mode
    };
    for (const auto& m : modes) {
        const std::string name = std::string("Lab ") + m.stored;
        add_record(with({}, {{MC_NAME, name.c_str()}, {MC_TYPE, "XDM"}, {MC_SERVER, "lab"}, {MC_XDM_MODE, m.stored},
                             {MC_XDM_DISPLAY, "3"}, {MC_XDM_VT, "Automatic"}, {MC_KEYBOARD, ""}}));
        w = open_xdm(name);
        EXPECT_EQ(mode(w), m.shown) << m.stored;
        EXPECT_EQ(text_of(w, "host"), m.host_open ? "lab" : "") << m.stored;
        EXPECT_EQ(gtk_widget_is_sensitive(control(w, "host")), m.host_open) << m.stored;
        EXPECT_EQ(text_of(w, "keymap"), "Use Local Settings");
        if (m.host_open)
            save_screenshot(w, std::string("xdm_") + m.shown);
        click(w, "_Save");
        EXPECT_EQ(master_row(name, "XDM")[MC_XDM_MODE], m.saved);
    }
}

TEST_F(xdm_editor_test, saved_connection_starts_x_with_its_settings)
{
    GtkWidget* w = open_xdm();
    for (const auto& [name, text] : {std::pair{"host", "xhost"}, {"display", "2"}, {"vt", "7"},
                                     {"keymap", "German"}, {"name", "Lab"}})
        type_text(w, name, text);
    set_box(w, "Direct", true);
    click(w, "_Save");
    const std::string r = root.path();
    EXPECT_EQ(launch("Lab", "XDM"),
              "xkbcomp|xkbcomp|-xkm|-m|de|" + r + "/etc/X11/xkb/keymap/xfree86|-o|" + r +
                  "/tmp/tmp.xkm\nX|X|:2|vt7|+kb|-xkbmap|tmp.xkm|-query|xhost\n");
}

}  // namespace
