#include "editors/choice_lists.h"
#include "editors/rdp_rules.h"
#include "support/test_support.h"

namespace {

using texts = std::vector<std::string>;

TEST(experience, presets_and_the_four_bits_both_ways)
{
    // Background 64, dragging 128, animation 256, themes 512; other bits (4097) stay.
    const struct { unsigned long bits; const char* preset; } table[] = {
        {0, "Modem (28.8 Kbps)"}, {512, "Modem (56 Kbps)"}, {896, "Broadband (128 Kbps - 1.5 Mbps)"},
        {960, "LAN (10 Mbps or higher)"}, {576, "Custom"}, {640, "Custom"}, {64, "Custom"}, {448, "Custom"},
    };
    for (const auto& c : table) {
        EXPECT_STREQ(experience_for_bits(c.bits | 4097), c.preset) << c.bits;
        const bool custom = std::string(c.preset) == "Custom";
        EXPECT_EQ(bits_for_experience(c.preset, 4097 | 320), custom ? 4097 | 320 : 4097 | c.bits) << c.preset;
    }
}

TEST(printcap, names_from_lines_comments_continuations_and_aliases)
{
    FILE* file = std::fopen(GOLDEN_DIR "/printcap", "r");
    ASSERT_TRUE(file);
    const texts names = printcap_names(file);
    std::fclose(file);
    // The 150-character line comes in as a 101-character piece, without ":", then the rest.
    EXPECT_EQ(names, (texts{"lp", "color", "", std::string(49, 'p')}));
}

TEST(printer_choices, earlier_choice_found_in_the_entry_text)
{
    const std::string beyond = std::string(100, 'x') + ",far=\"Far\"";
    const struct { std::string entry, name; bool redirect; const char* driver; } cases[] = {
        {"lp=\"HP LaserJet 4\",lp2=\"Generic\"", "lp2", true, "Generic"},
        {"lp=\"HP LaserJet 4\",lp2=\"Generic\"", "lp", true, "HP LaserJet 4"},
        {"xlp=\"Inside\"", "lp", true, "Inside"},  // a plain substring search
        {"lp=\"HP", "lp", true, ""},               // no closing quote: nothing read past it
        {"lp=", "lp", true, ""},
        {"lp2=\"A\"", "lp", false, ""},
        {beyond, "far", false, ""},  // beyond the first 102 characters
        {beyond.substr(3), "far", true, ""},  // found, but its quotes lie beyond them
    };
    for (const auto& c : cases) {
        const printer_choice choice = find_printer_choice(c.entry, c.name);
        EXPECT_EQ(choice.redirect, c.redirect) << c.entry << " / " << c.name;
        EXPECT_EQ(choice.driver, c.driver) << c.entry << " / " << c.name;
    }
    EXPECT_EQ(printer_selection({{"lp", "HP 4"}, {"lp2", ""}}), "lp=\"HP 4\",lp2=\"\"");
}

TEST(choice_lists, distinct_descending_and_sorted)
{
    // The first of names equal but for case stays.
    EXPECT_EQ(distinct_descending({"ts2", "", "TS1", "ts1", "Ts2", "alpha"}), (texts{"ts2", "TS1", "alpha", ""}));
    EXPECT_EQ(sorted_ignoring_case({"de", "B", "a", "C", "b"}), (texts{"a", "B", "b", "C", "de"}));
}

}  // namespace
