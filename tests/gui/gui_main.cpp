// The GUI tests need the toolkit up before any window is made.
#include <gtk/gtk.h>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
