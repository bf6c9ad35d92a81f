#include "fuzz_support.h"

#include "platform/message.h"

#include <cstdlib>
#include <glib.h>
#include <filesystem>

namespace {

std::string make_scratch()
{
    const char* base = std::getenv("KESTRELLE_FUZZ_SCRATCH");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/kestrelle-fuzz.XXXXXX";
    if (!mkdtemp(pattern.data()))
        std::abort();
    return pattern;
}

void remove_scratch()
{
    std::error_code ignored;
    std::filesystem::remove_all(fuzz_scratch(), ignored);
}

}  // namespace

const std::string& fuzz_scratch()
{
    // Never destroyed: the exit handler that removes the folder still needs its name.
    static const std::string* scratch = [] {
        auto* dir = new std::string(make_scratch());
        std::atexit(remove_scratch);
        return dir;
    }();
    return *scratch;
}

void fuzz_quiet_messages()
{
    set_message_handlers({[](const std::string&) {}, [] {}});
}

void fuzz_write_file(const std::string& path, const uint8_t* data, size_t size)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        std::abort();
    std::fwrite(data, 1, size, file);
    std::fclose(file);
}

void fuzz_write_file(const std::string& path, const std::string& text)
{
    fuzz_write_file(path, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

std::string fuzz_stream_text(FILE* stream, char** buffer, size_t* size)
{
    std::fclose(stream);
    std::string text(*buffer, *size);
    std::free(*buffer);
    return text;
}

void fuzz_fail(const char* what, const std::string& expected, const std::string& got)
{
    gchar* want = g_strescape(expected.c_str(), nullptr);
    gchar* have = g_strescape(got.c_str(), nullptr);
    std::fprintf(stderr, "Broken: %s\nexpected: \"%s\"\n     got: \"%s\"\n", what, want, have);
    g_free(want);
    g_free(have);
    std::abort();
}

std::vector<std::string> fuzz_lines(const uint8_t* data, size_t size)
{
    std::vector<std::string> lines(1);
    for (size_t i = 0; i < size; ++i) {
        if (data[i] == '\n')
            lines.emplace_back();
        else
            lines.back() += static_cast<char>(data[i]);
    }
    return lines;
}
