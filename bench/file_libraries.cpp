// Well-kept libraries that read the same files to the same end, for comparison: the titles of the first hundred rows or
// entries, and no others, are kept. They leave numbers, double bytes and printable ASCII to their callers, so they have less
// to do.
#include <benchmark/benchmark.h>
#include <csv.h>
#include <expat.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Shapes.h"

namespace {

constexpr std::size_t kTitles = 100;

struct Rows {
    std::vector<std::string> titles = std::vector<std::string>(kTitles);
    int column = 0;
    std::size_t number = kTitles;

    static void OnField(void* text, std::size_t length, void* data) {
        auto& rows = *static_cast<Rows*>(data);
        if (rows.column == 0) {
            rows.number = std::strtoul(std::string(static_cast<char*>(text), length).c_str(), nullptr, 10);
        } else if (rows.column == 1 && rows.number < kTitles && rows.titles[rows.number].empty()) {
            rows.titles[rows.number].assign(static_cast<char*>(text), length);
        }
        ++rows.column;
    }
    static void OnRow(int, void* data) { static_cast<Rows*>(data)->column = 0; }
};

void ByLibcsv(benchmark::State& state, const std::string& text, unsigned char separator) {
    for (auto _ : state) {
        Rows rows;
        csv_parser parser;
        csv_init(&parser, 0);
        csv_set_delim(&parser, separator);
        if (csv_parse(&parser, text.data(), text.size(), Rows::OnField, Rows::OnRow, &rows) != text.size()) {
            state.SkipWithError("not read to its end");
        }
        csv_fini(&parser, Rows::OnField, Rows::OnRow, &rows);
        csv_free(&parser);
        benchmark::DoNotOptimize(rows.titles);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

struct Entries {
    std::vector<std::string> titles = std::vector<std::string>(kTitles);
    std::size_t count = 0;
    bool inTitle = false;

    static void OnStart(void* data, const char* name, const char**) {
        auto& entries = *static_cast<Entries*>(data);
        entries.count += std::strcmp(name, "ENTRY") == 0 ? 1U : 0U;
        entries.inTitle = std::strcmp(name, "TITLE") == 0;
    }
    static void OnText(void* data, const char* text, int length) {
        auto& entries = *static_cast<Entries*>(data);
        if (entries.inTitle && entries.count < kTitles) {
            entries.titles[entries.count].append(text, static_cast<std::size_t>(length));
        }
    }
    static void OnEnd(void* data, const char*) { static_cast<Entries*>(data)->inTitle = false; }
};

void ByExpat(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        Entries entries;
        XML_Parser parser = XML_ParserCreate("ISO-8859-1");
        XML_SetUserData(parser, &entries);
        XML_SetElementHandler(parser, Entries::OnStart, Entries::OnEnd);
        XML_SetCharacterDataHandler(parser, Entries::OnText);
        if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK) {
            state.SkipWithError("not read to its end");
        }
        XML_ParserFree(parser);
        benchmark::DoNotOptimize(entries.titles);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

BENCHMARK_CAPTURE(ByLibcsv, Csv, CsvRows(), ',')->Name("LibcsvCsvRows");
BENCHMARK_CAPTURE(ByLibcsv, TabText, TabTextRows(), '\t')->Name("LibcsvTabTextRows");
BENCHMARK_CAPTURE(ByExpat, PlayList, PlayListEntries())->Name("ExpatPlayListEntries");

}  // namespace
