// The help window on a file that is not all UTF-8: the pieces of a long line are joined
// before their encoding is checked, and a Latin-1 line is shown converted, never dropped.
#include "shell_window_fixture.h"

#include <gtest/gtest.h>

namespace {

TEST_F(shell_window_test, help_shows_long_utf8_lines_and_latin1_lines_whole)
{
    open_main_window({false, false});
    std::string accents;  // 300 bytes: the 199-byte pieces end inside a character
    for (int i = 0; i < 150; ++i)
        accents += "\xc3\xa9";
    write_file(root / "etc/.kestrel/kestrel.help", accents + "\nCaf\xe9 cr\xe8me\nfin");
    gtk_button_clicked(GTK_BUTTON(find_button(root_window, "_Help")));
    pump_events();
    GtkWidget* window = find_window("Help");
    ASSERT_NE(window, nullptr);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(find_widget(window, GTK_TYPE_TEXT_VIEW)));
    GtkTextIter start, end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    char* shown = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
    EXPECT_EQ(shown, accents + "\nCaf\xc3\xa9 cr\xc3\xa8me\nfin");
    g_free(shown);
    gtk_widget_destroy(window);
}

}  // namespace
