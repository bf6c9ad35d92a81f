#include "check/checks.h"

#include "store/ica_paths.h"
#include "store/password.h"
#include "store/appsrv.h"
#include "store/wfclient_text.h"
#include "store/models.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr const char* appsrv_file = "/etc/.kestrel/appsrv.ini";
constexpr const char* wfclient_path = "/etc/.kestrel/wfclient.ini";
constexpr const char* password_key = "Password=";

bool read_whole(const std::string& path, std::string* text)
{
    gchar* contents = nullptr;
    gsize length = 0;
    if (!g_file_get_contents(path.c_str(), &contents, &length, nullptr))
        return false;
    text->assign(contents, length);
    g_free(contents);
    return true;
}

// The file's lines; a Password= line by the password it encodes, since every save
// draws a new seed from the clock.
std::vector<std::string> comparable_lines(const std::string& text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        std::string clear;
        if (line.starts_with(password_key) && decode_ascii_password(line.substr(9), &clear))
            line = std::string(password_key) + "(encoding of " + quoted(clear) + ")";
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

// What a save of the loaded master list writes into appsrv.ini.
std::string appsrv_written(const master_view& master)
{
    char* buffer = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&buffer, &size);
    if (!out)
        return "";
    // The header names the ICA connections of the list, in list order.
    GtkListStore* ica_rows = create_master_store();
    for (const connection_record& record : master.records)
        if (parse_connection_type(record[MC_TYPE]) == connection_type::ica)
            insert_master_row(ica_rows, -1, record);
    write_appsrv_header(out, GTK_TREE_MODEL(ica_rows));
    g_object_unref(ica_rows);
    for (const connection_record& record : master.records)
        if (parse_connection_type(record[MC_TYPE]) == connection_type::ica)
            std::fputs(ica_section(record).c_str(), out);
    std::fclose(out);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

bool has_ica_connection(const master_view& master)
{
    for (const connection_record& record : master.records)
        if (parse_connection_type(record[MC_TYPE]) == connection_type::ica)
            return true;
    return false;
}

}  // namespace

void check_appsrv(check_report& report, const master_view& master, const file_choice& files)
{
    std::string text;
    if (!read_whole(files.read_path(appsrv_file), &text)) {
        if (has_ica_connection(master))
            report.fail(appsrv_file, 0, "missing or unreadable: no ICA connection can start");
        return;
    }
    const std::vector<std::string> found = comparable_lines(text);
    const std::vector<std::string> written = comparable_lines(appsrv_written(master));
    for (size_t i = 0; i < std::max(found.size(), written.size()); ++i) {
        if (i < found.size() && i < written.size() && found[i] == written[i])
            continue;
        const int line = static_cast<int>(i + 1);
        const std::string what = i < found.size() ? "reads " + quoted(found[i]) : "ends";
        const std::string wanted = i < written.size() ? "the master list writes " + quoted(written[i])
                                                      : "the master list writes no more";
        report.fail(appsrv_file, line, "out of step with the master list: " + what + " where " + wanted);
        return;
    }
}

void check_wfclient(check_report& report, const file_choice& files)
{
    std::string text;
    // A missing file is made afresh, from the client's own copy, when it is first needed.
    if (!read_whole(files.read_path(wfclient_path), &text))
        return;
    const read_observer findings = findings_observer(report, wfclient_path);
    global_settings settings = default_global_settings();
    read_global_settings(text, settings, &findings);
    if (!has_wfclient_section(text))
        report.warn(wfclient_path, 0, "no \"[WFClient]\" line: saving the server locations or the global "
                                      "settings drops their keys and writes none");
}
