#include "platform/message.h"

#include "platform/log.h"

#include <cstdio>

namespace {

// Without a display the label's text is kept here so that a later run shows it.
std::string& headless_label()
{
    static std::string text;
    return text;
}

void headless_set_text(const std::string& text) { headless_label() = text; }

void headless_run()
{
    std::fputs(headless_label().c_str(), stderr);
    log_printf("%s", headless_label().c_str());
}

message_handlers& handlers()
{
    static message_handlers current{headless_set_text, headless_run};
    return current;
}

}  // namespace

void set_message_handlers(message_handlers replacement) { handlers() = replacement; }

void set_error_text(const std::string& text) { handlers().set_text(text); }

void run_error_dialog() { handlers().run(); }

void show_error(const std::string& text)
{
    set_error_text(text);
    run_error_dialog();
}

void run_reconnect_dialog()
{
    if (handlers().prompt)
        handlers().prompt();
}
