// Reading title files: the cost has to grow with the size alone, whatever the file holds.
#include <benchmark/benchmark.h>

#include <string>

#include "Shapes.h"
#include "TitleFile.h"

namespace {

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

BENCHMARK_CAPTURE(Csv, Rows, CsvRows())->Name("CsvRows");
BENCHMARK_CAPTURE(Csv, NoLineFeed, Repeated("1,2,3,4,5,6,7,8,"))->Name("CsvNoLineFeed");
BENCHMARK_CAPTURE(Csv, NoComma, Repeated("a line and nothing else\n"))->Name("CsvNoComma");
BENCHMARK_CAPTURE(Csv, OneField, std::string(kShapeSize, 'x'))->Name("CsvOneField");
BENCHMARK_CAPTURE(Csv, OneQuotedField, "1,\"" + Repeated("x\"\""))->Name("CsvOneQuotedField");
BENCHMARK_CAPTURE(Csv, CarriageReturns, Repeated("7,a\r\r\r\r\r\r\r\r\n"))->Name("CsvCarriageReturns");
BENCHMARK_CAPTURE(TabText, Rows, TabTextRows())->Name("TabTextRows");
BENCHMARK_CAPTURE(TabText, OneLine, std::string(kShapeSize, '\t'))->Name("TabTextOneLine");
BENCHMARK_CAPTURE(TabText, LineFeeds, std::string(kShapeSize, '\n'))->Name("TabTextLineFeeds");
BENCHMARK_CAPTURE(PlayList, Entries, PlayListEntries())->Name("PlayListEntries");
BENCHMARK_CAPTURE(PlayList, Tags, "<ASX>" + Repeated("<BASE />") + "</ASX>")->Name("PlayListTags");
BENCHMARK_CAPTURE(PlayList, OneTitle, "<ASX><TITLE>" + std::string(kShapeSize, 'x') + "</TITLE></ASX>")
    ->Name("PlayListOneTitle");

}  // namespace

BENCHMARK_MAIN();
