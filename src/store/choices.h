#pragma once
// Every closed set of option bits and choice texts that the editors store and the
// launcher and the file writers read, defined once. A text column that matches none
// of its choices (a hand-edited file) is kept as it stands and adds nothing.
#include <cstddef>
#include <string_view>

// RDP option bits (column 33), each owned by one check box of the RDP editor. Bit 1
// is never used.
enum rdp_option : unsigned long {
    rdp_lpt_port = 2,
    rdp_disk = 4,
    rdp_printer = 8,
    rdp_com_port = 16,
    rdp_start_program = 32,
    rdp_desktop_background = 64,
    rdp_window_drag = 128,
    rdp_menu_animation = 256,
    rdp_themes = 512,
    rdp_bitmap_caching = 1024,
    rdp_backing_store = 2048,
    rdp_compression = 4096,
    rdp_persistent_bitmap_caching = 8192,
    rdp_extra_options = 16384,
};
// The four "Allow the following:" features of the experience presets.
inline constexpr unsigned long rdp_experience_bits =
    rdp_desktop_background | rdp_window_drag | rdp_menu_animation | rdp_themes;
inline constexpr int rdp_experience_shift = 6;  // the lowest of them is bit 64

// ICA flag word (column 34), each bit kept in step with one control of the ICA editor.
enum ica_option : unsigned long {
    ica_server = 0x1,
    ica_published_app = 0x2,      // column 5 names a published application
    ica_smartcard_logon = 0x4,    // also passes Ctrl-Alt-Del to the server
    ica_compress = 0x8,
    ica_persistent_cache = 0x10,
    ica_client_audio = 0x20,
    ica_session_reliability = 0x40,
    ica_alternate_address = 0x80,
    ica_approximate_on = 0x100,
    ica_approximate_off = 0x200,
    ica_default_colormap = 0x400,
    ica_seamless = 0x800,
};

// A choice an editor offers, and what the session program is given for it ("" for
// nothing).
struct choice_argument {
    const char* text;
    const char* argument;
};

// What the session program or file is given for text, or fallback when text is none
// of the choices.
template <size_t N>
constexpr const char* argument_for(const choice_argument (&choices)[N], std::string_view text,
                                   const char* fallback)
{
    for (const choice_argument& choice : choices)
        if (text == choice.text)
            return choice.argument;
    return fallback;
}

inline constexpr const char* rdp_use_default = "Use Default";
inline constexpr const char* rdp_full_screen = "Full Screen";
inline constexpr const char* rdp_window_sizes[] = {
    "Use Default", "640x480",   "800x600",   "1024x768",  "1142x864",  "1280x720",  "1280x960",
    "1280x1024",   "1400x1050", "1600x1200", "1680x1050", "1920x1440", "2048x1536", "Full Screen",
};
inline constexpr choice_argument rdp_colours[] = {
    {"Use Default", ""},
    {"256 Colors (8 bit)", "-a8"},
    {"High Color (15 bit)", "-a15"},
    {"High Color (16 bit)", "-a16"},
    {"True Color (24 bit)", "-a24"},
};
inline constexpr choice_argument rdp_sound[] = {
    {"Bring to this computer", "-rsound:local"},
    {"Do not play", ""},
    {"Leave at remote computer", "-rsound:remote"},
};
// Experience presets and the four features each one allows (rdp_experience_bits).
struct experience_preset {
    const char* text;
    const char* argument;
    unsigned long allowed;
};
inline constexpr const char* rdp_custom_experience = "Custom";
inline constexpr experience_preset rdp_experiences[] = {
    {"Modem (28.8 Kbps)", "-xm", 0},
    {"Modem (56 Kbps)", "", rdp_themes},
    {"Broadband (128 Kbps - 1.5 Mbps)", "-xb", rdp_window_drag | rdp_menu_animation | rdp_themes},
    {"LAN (10 Mbps or higher)", "-xl", rdp_experience_bits},
};

// XDM: the virtual terminal, keyboard and query mode texts.
inline constexpr const char* xdm_automatic_vt = "Automatic";
inline constexpr const char* xdm_local_keyboard = "Use Local Settings";
inline constexpr const char* xdm_server_keyboard = "Use Server Settings";
struct xdm_mode {
    const char* text;    // as stored in column 7
    const char* option;  // what X is given
    bool names_host;
};
inline constexpr xdm_mode xdm_modes[] = {
    {"Broadcast", "-broadcast", false},
    {"Indirect", "-indirect", true},
    {"Query", "-query", true},
};

// The ICA server location and proxy texts that mean "use the client's defaults".
inline constexpr const char* ica_default = "Default";

// The ICA editor's closed choices (columns 13 to 27), and what appsrv.ini gets for them.
inline constexpr const char* ica_window_sizes[] = {
    "Default",   "Full Screen", "640x480",   "800x600",   "1024x768",
    "1280x1024", "1600x1200",   "1920x1080", "1920x1200", "1920x1440",
    "2048x1536", "25% of screen size", "50% of screen size", "75% of screen size",
    "100% of screen size",
};
inline constexpr const char* ica_full_screen = ica_window_sizes[1];
// Window colours (column 14) and their DesiredColor; any other text is 8.
inline constexpr const char* ica_colours[] = {"16", "256", "15-bit", "16-bit", "24-bit", "Default"};
inline constexpr choice_argument ica_desired_colours[] = {
    {"16", "1"}, {"256", "2"}, {"15-bit", "3"}, {"16-bit", "4"}};
inline constexpr const char* ica_other_desired_colour = "8";
inline constexpr const char* ica_colour_256 = ica_colours[1];
// The 256 colour mappings, each owning one bit of the flag word.
struct ica_colour_mapping {
    const char* text;
    ica_option bit;
};
inline constexpr ica_colour_mapping ica_colour_mappings[] = {
    {"Shared - Approximate Colors", ica_approximate_on},
    {"Private - Exact Colors", ica_approximate_off},
    {"Default", ica_default_colormap},
};
// Sound quality (column 15) and its AudioBandwidthLimit; any other text is "1".
inline constexpr choice_argument ica_sound_qualities[] = {{"High", "0"}, {"Med", "1"}, {"Low", "2"}};
inline constexpr const char* ica_other_bandwidth = "1";
inline constexpr const char* ica_sound_default = ica_sound_qualities[1].text;
inline constexpr const char* ica_audio_inputs[] = {"Disabled", "Enabled"};
inline constexpr const char* ica_audio_disabled = ica_audio_inputs[0];
inline constexpr const char* ica_speedscreen_modes[] = {"On", "Off"};
inline constexpr const char* ica_speedscreen_off = ica_speedscreen_modes[1];
// Mouse click feedback and local text echo (columns 27, 26) and their ZL modes; any
// other text is "2".
inline constexpr choice_argument ica_latency_modes[] = {{"On", "1"}, {"Off", "0"}, {"Auto", "2"}};
inline constexpr const char* ica_other_latency = "2";
inline constexpr const char* ica_encryption_levels[] = {
    "Basic", "RC5 (128 bit - Login Only)", "RC5 (40 bit)", "RC5 (56 bit)", "RC5 (128 bit)"};
inline constexpr const char* ica_proxy_types[] = {"Default", "None (direct)", "SOCKS", "Secure (HTTPS)"};
inline constexpr const char* ica_proxy_none = ica_proxy_types[1];
inline constexpr const char* ica_proxy_secure = ica_proxy_types[3];
inline constexpr const char* ica_session_reliability_port = "2598";
inline constexpr const char* ica_relay_port = "441";

// Server locations: the connection's group (column 6) and browser protocol (column 7).
inline constexpr const char* ica_server_groups[] = {"Default", "Custom"};
inline constexpr const char* ica_custom_group = ica_server_groups[1];
inline constexpr const char* ica_protocols[] = {"TCP browser", "TCP + HTTP browser",
                                                "SSL/TLS + HTTPS browser"};
inline constexpr const char* ica_tcp_browser = ica_protocols[0];
inline constexpr const char* ica_http_browser = ica_protocols[1];
inline constexpr const char* ica_ssl_browser = ica_protocols[2];
