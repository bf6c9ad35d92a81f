#include "store/appsrv.h"

#include "store/choices.h"
#include "store/password.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// The password is copied into a buffer of this size (at most 511 characters).
constexpr size_t password_buffer_size = 512;
// The encoding of 253 characters is 4 + 2 * 254 = 512 digits: with the NUL, 513 bytes.
constexpr uint16_t encoded_buffer_size = 513;
// The window size is searched for "%" and "x" in this many bytes only.
constexpr size_t window_size_search = 102;

std::string key_line(const char* key, const std::string& value)
{
    return std::string(key) + "=" + value + "\n";
}

const char* on_off(bool on) { return on ? "On" : "Off"; }

const char* latency_mode(const std::string& text)
{
    return argument_for(ica_latency_modes, text, ica_other_latency);
}

std::string browser_lines(const connection_record& r)
{
    std::string lines;
    if (r[MC_ICA_LOCATION] != ica_default)
        lines += "DoNotUseDefaultCSL=On\n";
    const std::string& protocol = r[MC_ICA_PROTOCOL];
    if (protocol == ica_ssl_browser)
        lines += "SSLEnable=On\n";
    if (protocol == ica_tcp_browser)
        lines += key_line("LocTcpBrowserAddress", r[MC_ICA_LOCATION]) + "BrowserProtocol=UDP\n";
    else if (protocol != ica_default)
        lines += key_line("LocHttpBrowserAddress", r[MC_ICA_LOCATION]) +
                 "BrowserProtocol=HTTPonTCP\n";
    return lines;
}

// "None (direct)" is written as "None". The cut of "Secure (HTTPS)" to "Secure" looks
// at the encryption level instead of the proxy type, so "Secure (HTTPS)" is written
// whole in practice; existing client set-ups rely on exactly this text.
std::string proxy_type_text(const connection_record& r)
{
    std::string type = r[MC_ICA_PROXY_TYPE];
    if (type == ica_proxy_none)
        type.resize(4);
    if (r[MC_ICA_ENCRYPTION] == ica_proxy_secure && type.size() > 6)
        type.resize(6);
    return type;
}

std::string proxy_lines(const connection_record& r)
{
    if (r[MC_ICA_PROXY_TYPE] == ica_default)
        return "ProxyUseDefault=On\n";
    const std::string type = proxy_type_text(r);
    std::string lines = key_line("ProxyType", type);
    if (type != "None") {
        lines += "ProxyHost=" + r[MC_ICA_PROXY_HOST];
        if (!r[MC_ICA_PROXY_PORT].empty())
            lines += ":" + r[MC_ICA_PROXY_PORT];
        lines += "\n";
    }
    return lines + "ProxyUseDefault=Off\n";
}

std::string audio_lines(const connection_record& r, unsigned long mask)
{
    if (!(mask & ica_client_audio))
        return "ClientAudio=Off\n";
    const std::string& quality = r[MC_SOUND];
    return key_line("EnableAudioInput", r[MC_ICA_AUDIO_INPUT] == ica_audio_disabled ? "No" : "Yes") +
           key_line("AudioBandwidthLimit", argument_for(ica_sound_qualities, quality, ica_other_bandwidth)) +
           "ClientAudio=On\n";
}

const char* desired_color(const std::string& colours)
{
    return argument_for(ica_desired_colours, colours, ica_other_desired_colour);
}

std::string colour_lines(const connection_record& r, unsigned long mask)
{
    std::string lines;
    if (r[MC_COLOURS] != ica_default) {
        const std::string value = desired_color(r[MC_COLOURS]);
        lines += key_line("DesiredColor", value);
        const bool colours_256 = r[MC_COLOURS] == ica_colour_256;
        if (colours_256 && (mask & ica_approximate_on))
            lines += "ApproximateColors=On\n";
        if (colours_256 && (mask & ica_approximate_off))
            lines += "ApproximateColors=Off\n";
    }
    return lines + key_line("UseDefaultSettingForColormap",
                            mask & ica_default_colormap ? "Yes" : "No");
}

std::string window_lines(const std::string& size)
{
    if (size == ica_full_screen)
        return "NoWindowManager=TRUE\nUseFullScreen=Yes\n";
    const std::string searched = size.substr(0, window_size_search);
    if (size_t percent = searched.find('%'); percent != std::string::npos)
        return key_line("ScreenPercent", size.substr(0, percent));
    if (size_t x = searched.find('x'); x != std::string::npos)
        return key_line("DesiredHRES", size.substr(0, x)) +
               key_line("DesiredVRES", size.substr(x + 1));
    return "";
}

std::string program_lines(const connection_record& r, unsigned long mask)
{
    std::string lines;
    if ((mask & ica_published_app) && (mask & ica_seamless))
        lines += "TWIMode=On\n";
    if (mask & ica_published_app) {
        if (!r[MC_SERVER].empty())
            lines += key_line("InitialProgram", "#" + r[MC_SERVER]);
    } else if (!r[MC_PROGRAM].empty()) {
        lines += key_line("InitialProgram", r[MC_PROGRAM]);
    }
    return lines;
}

std::string line_if_set(const char* key, const std::string& value)
{
    return value.empty() ? "" : key_line(key, value);
}

// The Password line: the stored text unpadded and unscrambled, then encoded for the
// client. No line when there is nothing stored or the encoding does not fit.
std::string password_line(const connection_record& r)
{
    if (r[MC_PASSWORD].empty())
        return "";
    const std::string clear = unpad_password(r[MC_PASSWORD], r[MC_NAME]);
    std::vector<unsigned char> data(password_buffer_size, 0);
    std::memcpy(data.data(), clear.c_str(), std::min(clear.size(), password_buffer_size));
    data.back() = 0;
    const auto length = static_cast<uint16_t>(std::strlen(reinterpret_cast<char*>(data.data())));
    char encoded[encoded_buffer_size];
    const int count = EncryptToAscii(data.data(), length, encoded, encoded_buffer_size);
    if (count == 0)
        return "";
    encoded[count] = '\0';
    return key_line("Password", encoded);
}

}  // namespace

gboolean file_ica_serverentry(GtkTreeModel* model, GtkTreePath*, GtkTreeIter* iter, gpointer file)
{
    if (parse_connection_type(model_text(model, iter, MC_TYPE)) == connection_type::ica)
        std::fprintf(static_cast<FILE*>(file), "%s=\n", model_text(model, iter, MC_NAME).c_str());
    return FALSE;
}

void write_appsrv_header(FILE* file, GtkTreeModel* master)
{
    std::fputs("[WFClient]\n", file);
    std::fputs("Version=1\n", file);
    std::fputs("\n[ApplicationServers]\n", file);
    gtk_tree_model_foreach(master, file_ica_serverentry, file);
}

std::string ica_section(const connection_record& r)
{
    const unsigned long mask = decimal_column(r[MC_ICA_MASK]);
    std::string s = "\n[" + r[MC_NAME] + "]\n";
    s += "WinStationDriver=ICA 3.0\n";
    s += "TransportDriver=TCP/IP\n";
    s += key_line("DisableCtrlAltDel", mask & ica_smartcard_logon ? "Off" : "On");
    s += browser_lines(r);
    s += line_if_set("EncryptionLevelSession", r[MC_ICA_ENCRYPTION]);
    s += key_line("Compress", on_off(mask & ica_compress));
    if (mask & ica_alternate_address)
        s += "UseAlternateAddress=On\n";
    s += proxy_lines(r);
    s += audio_lines(r, mask);
    if (mask & ica_persistent_cache)
        s += "PersistentCacheEnabled=On\n";
    s += key_line("ZLMouseMode", latency_mode(r[MC_ICA_MOUSE_LATENCY]));
    s += key_line("ZLKeyboardMode", latency_mode(r[MC_ICA_KEYBOARD_LATENCY]));
    s += colour_lines(r, mask);
    s += window_lines(r[MC_WINDOW_SIZE]);
    s += line_if_set("WorkDirectory", r[MC_WORKDIR]);
    s += key_line("Address", r[MC_SERVER]);
    s += program_lines(r, mask);
    s += line_if_set("Domain", r[MC_DOMAIN]);
    s += line_if_set("UserName", r[MC_USERNAME]);
    s += password_line(r);
    if (r[MC_ICA_SPEEDSCREEN] == ica_speedscreen_off)
        s += "SpeedScreen=Off\n";
    return s;
}
