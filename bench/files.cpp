// Reading title files: the cost has to grow with the size alone, whatever the file holds.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "TitleFile.h"

namespace {

constexpr std::size_t kSize = 16 << 20;

// The same text again and again.
std::string Repeated(std::string_view text) {
    std::string all;
    all.reserve(kSize + text.size());
    while (all.size() < kSize) {
        all += text;
    }
    return all;
}

template <class Read>
void Measure(benchmark::State& state, const std::string& text, Read read) {
    for (auto _ : state) {
        TitleFile file;
        read(file, text);
        benchmark::DoNotOptimize(file.CountTitles());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}

void Csv(benchmark::State& state, const std::string& text) {
    Measure(state, text, [](TitleFile& file, const std::string& all) { file.ReadCsv(all); });
}

void TabText(benchmark::State& state, const std::string& text) {
    Measure(state, text, [](TitleFile& file, const std::string& all) { file.ReadTabText(all); });
}

void PlayList(benchmark::State& state, const std::string& text) {
    Measure(state, text, [](TitleFile& file, const std::string& all) { file.ReadAsx(all); });
}

BENCHMARK_CAPTURE(Csv, Rows, Repeated("12,\"A title with \"\"quotes\"\" in it\"\r\n"))->Name("CsvRows");
BENCHMARK_CAPTURE(Csv, NoLineFeed, Repeated("1,2,3,4,5,6,7,8,"))->Name("CsvNoLineFeed");
BENCHMARK_CAPTURE(Csv, NoComma, Repeated("a line and nothing else\n"))->Name("CsvNoComma");
BENCHMARK_CAPTURE(Csv, OneField, std::string(kSize, 'x'))->Name("CsvOneField");
BENCHMARK_CAPTURE(Csv, OneQuotedField, "1,\"" + Repeated("x\"\""))->Name("CsvOneQuotedField");
BENCHMARK_CAPTURE(Csv, CarriageReturns, Repeated("7,a\r\r\r\r\r\r\r\r\n"))->Name("CsvCarriageReturns");
BENCHMARK_CAPTURE(TabText, Rows, Repeated("12\tA title as it is\r\n"))->Name("TabTextRows");
BENCHMARK_CAPTURE(TabText, OneLine, std::string(kSize, '\t'))->Name("TabTextOneLine");
BENCHMARK_CAPTURE(TabText, LineFeeds, std::string(kSize, '\n'))->Name("TabTextLineFeeds");
BENCHMARK_CAPTURE(PlayList, Entries,
                  "<ASX>" + Repeated("<ENTRY><TITLE>A title</TITLE><REF HREF=\"http://a/b.mp3\" /></ENTRY>\r\n") + "</ASX>")
    ->Name("PlayListEntries");
BENCHMARK_CAPTURE(PlayList, Tags, "<ASX>" + Repeated("<BASE />") + "</ASX>")->Name("PlayListTags");
BENCHMARK_CAPTURE(PlayList, OneTitle, "<ASX><TITLE>" + std::string(kSize, 'x') + "</TITLE></ASX>")->Name("PlayListOneTitle");

}  // namespace

BENCHMARK_MAIN();
