#include "check/report.h"

#include "store/record.h"

#include <cstdio>

int check_report::exit_status() const
{
    int status = 0;
    for (const finding& f : findings)
        status = std::max(status, f.error ? 2 : 1);
    return status;
}

std::string quoted(const std::string& text) { return "\"" + text + "\""; }

namespace {

// One JSON character per byte, whatever the encoding: the files are not UTF-8 on every
// terminal, and a byte must come back as the byte the file holds.
std::string json_text(const std::string& text)
{
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c >= 0x7f) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string json_list(const std::vector<std::string>& items)
{
    std::string out = "[";
    for (size_t i = 0; i < items.size(); ++i)
        out += (i ? ", " : "") + json_text(items[i]);
    return out + "]";
}

const char* json_bool(bool value) { return value ? "true" : "false"; }

std::string json_reachability(const reachability_check& check)
{
    using method = reachability_check::method;
    if (check.how == method::icmp)
        return "{\"method\": \"ping\", \"command\": " + json_text(check.command) + "}";
    if (check.how == method::tcp)
        return "{\"method\": \"tcp\", \"host\": " + json_text(check.host) +
               ", \"port\": " + std::to_string(decimal_column(check.port)) + "}";
    return "null";
}

std::string json_connection(const connection_view& c)
{
    std::string out = "{\"name\": " + json_text(c.name) + ", \"type\": " + json_text(c.type) +
                      ", \"reachability\": " + json_reachability(c.reachability) +
                      ", \"program\": " + (c.program ? json_text(*c.program) : "null");
    if (c.command)
        out += ", \"command\": " + json_text(*c.command);
    out += ", \"argv\": " + (c.argv ? json_list(*c.argv) : "null");
    if (!c.xkbcomp.empty())
        out += ", \"xkbcomp\": " + json_text(c.xkbcomp);
    return out + "}";
}

std::string json_row(const tree_row& row, const std::vector<tree_row>& secondaries)
{
    std::string out = "{\"name\": " + json_text(row.name) + ", \"type\": " + json_text(row.type) +
                      ", \"primary\": " + json_bool(row.primary) + ", \"automatic\": " + json_bool(row.automatic) +
                      ", \"persistent\": " + json_bool(row.persistent) + ", \"prompt\": " + json_bool(row.prompt) +
                      ", \"secondaries\": [";
    for (size_t i = 0; i < secondaries.size(); ++i)
        out += (i ? ", " : "") + json_row(secondaries[i], {});
    return out + "]}";
}

template <typename T, typename Format>
void print_json_list(FILE* out, const char* key, const std::vector<T>& items, Format format, bool last)
{
    std::fprintf(out, "  \"%s\": [", key);
    for (size_t i = 0; i < items.size(); ++i)
        std::fprintf(out, "%s\n    %s", i ? "," : "", format(items[i]).c_str());
    std::fprintf(out, "%s]%s\n", items.empty() ? "" : "\n  ", last ? "" : ",");
}

std::string human_reachability(const reachability_check& check)
{
    using method = reachability_check::method;
    if (check.how == method::icmp)
        return "ping: " + check.command;
    if (check.how == method::tcp)
        return "tcp " + check.host + " port " + check.port;
    return "none";
}

// The flags that take effect: a primary row's, and Prompt only with Persistent.
std::string human_flags(const tree_row& row)
{
    std::string flags;
    if (row.automatic)
        flags += " Automatic";
    if (row.persistent)
        flags += row.prompt ? " Persistent Prompt" : " Persistent";
    return flags;
}

std::string human_argv(const std::vector<std::string>& argv)
{
    std::string out;
    for (const std::string& argument : argv)
        out += (out.empty() ? "" : " ") + quoted(argument);
    return out;
}

}  // namespace

void print_json(const check_report& report, FILE* out)
{
    std::fputs("{\n", out);
    print_json_list(out, "connections", report.connections, json_connection, false);
    print_json_list(out, "users", report.users, [](const user_view& u) {
        std::string rows = "[";
        for (size_t i = 0; i < u.rows.size(); ++i)
            rows += (i ? ", " : "") + json_row(u.rows[i].primary, u.rows[i].secondaries);
        return "{\"user\": " + json_text(u.user) + ", \"file\": " + json_text(u.file) + ", \"rows\": " + rows + "]}";
    }, false);
    print_json_list(out, "findings", report.findings, [](const finding& f) {
        return "{\"file\": " + json_text(f.file) + ", \"line\": " + std::to_string(f.line) +
               ", \"severity\": " + (f.error ? "\"error\"" : "\"warning\"") + ", \"message\": " +
               json_text(f.message) + "}";
    }, true);
    std::fputs("}\n", out);
}

void print_report(const check_report& report, FILE* out)
{
    for (const connection_view& c : report.connections) {
        std::fprintf(out, "connection %s (%s)\n", quoted(c.name).c_str(), c.type.c_str());
        std::fprintf(out, "  reachability: %s\n", human_reachability(c.reachability).c_str());
        if (!c.xkbcomp.empty())
            std::fprintf(out, "  first: %s\n", c.xkbcomp.c_str());
        if (c.command)
            std::fprintf(out, "  command line: %s\n", quoted(*c.command).c_str());
        if (!c.program)
            std::fputs("  starts nothing\n", out);
        else if (!c.argv)
            std::fputs("  argv: (the command line does not parse: nothing starts)\n", out);
        else
            std::fprintf(out, "  argv: %s%s\n", human_argv(*c.argv).c_str(), c.argv->empty() ? "(empty)" : "");
    }
    for (const user_view& u : report.users) {
        std::fprintf(out, "user %s: %s\n", u.user.empty() ? "(by home directory)" : u.user.c_str(),
                     u.file.c_str());
        for (const primary_group& g : u.rows) {
            std::fprintf(out, "  %s (%s)%s\n", quoted(g.primary.name).c_str(), g.primary.type.c_str(),
                         human_flags(g.primary).c_str());
            for (const tree_row& s : g.secondaries)
                std::fprintf(out, "    then %s (%s)\n", quoted(s.name).c_str(), s.type.c_str());
        }
    }
    for (const finding& f : report.findings)
        std::fprintf(out, "%s:%d: %s: %s\n", f.file.c_str(), f.line, f.error ? "error" : "warning", f.message.c_str());
}
