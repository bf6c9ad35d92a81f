// The XDM editor's own rules, driven as the administrator drives it.
#include "editors/editors.h"
#include "gui/admin_fixture.h"

namespace {

constexpr const char* title = "XDM connection";

class xdm_editor_test : public admin_test {
protected:
    GtkWidget* open_xdm(const std::string& name = "") { return open(xdm_dialog, title, name, "XDM"); }
    static std::string mode(GtkWidget* w)
    {
        std::string chosen;
        for (const char* button : {"Broadcast", "Indirect", "Direct"})
            if (box_on(w, button))
                chosen += button;
        return chosen;
    }
};

TEST_F(xdm_editor_test, query_modes_and_the_host_field)
{
    // The hosts offered are those of the XDM rows, each once whatever its case, descending.
    const struct { const char* stored; const char* shown; bool host_open; const char* saved; } modes[] = {
        {"Query", "Direct", true, "Query"},
        {"Broadcast", "Broadcast", false, "Broadcast"},
        {"Indirect", "Indirect", true, "Indirect"},
        {"query", "Indirect", true, "Indirect"},  // a word that names no mode
    };
    std::string rows = record("A1", "XDM", false, "0", {{5, "b"}}) + record("A2", "XDM", false, "0", {{5, "A"}}) +
                       record("A3", "XDM", false, "0", {{5, "a"}}) + record("A4", "RDP", false, "0", {{5, "zz"}});
    for (const auto& m : modes)
        rows += record(std::string("Lab ") + m.stored, "XDM", false, "0",
                       {{5, "lab"}, {7, m.stored}, {12, "Automatic"}, {13, "3"}});
    load(master(rows));
    GtkWidget* w = open_xdm();
    EXPECT_EQ(choices(w, "host"), "lab\nb\nA\n");
    EXPECT_EQ(mode(w), "Indirect");
    set_box(w, "Broadcast", true);
    EXPECT_EQ(text_of(w, "host"), "");
    EXPECT_FALSE(sensitive(w, "host"));
    set_box(w, "Direct", true);
    EXPECT_EQ(text_of(w, "host"), "");
    EXPECT_TRUE(sensitive(w, "host"));
    click(w, "_Cancel");

    for (const auto& m : modes) {
        const std::string name = std::string("Lab ") + m.stored;
        w = open_xdm(name);
        EXPECT_EQ(mode(w), m.shown) << m.stored;
        EXPECT_EQ(text_of(w, "host"), m.host_open ? "lab" : "") << m.stored;
        EXPECT_EQ(sensitive(w, "host"), m.host_open) << m.stored;
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
