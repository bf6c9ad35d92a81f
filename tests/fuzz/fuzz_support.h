#pragma once
// Shared by the fuzz targets: a private scratch folder, quiet messages, and the split of
// one input into several texts.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

// A folder of this process, made on first use (under $KESTRELLE_FUZZ_SCRATCH or /tmp)
// and removed at exit.
const std::string& fuzz_scratch();
// Messages for the error dialog are dropped; the fuzz run has no display.
void fuzz_quiet_messages();
void fuzz_write_file(const std::string& path, const uint8_t* data, size_t size);
void fuzz_write_file(const std::string& path, const std::string& text);
// Everything a writer put into a stream made by open_memstream, closed.
std::string fuzz_stream_text(FILE* stream, char** buffer, size_t* size);
// A broken check: says what broke, shows both texts (escaped) and aborts, so that
// libFuzzer keeps the input.
[[noreturn]] void fuzz_fail(const char* what, const std::string& expected, const std::string& got);
// The input cut at each line end (the line ends are dropped).
std::vector<std::string> fuzz_lines(const uint8_t* data, size_t size);
