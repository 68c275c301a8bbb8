// What an operation of the store costs, and what a full store takes of the memory.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "TitleStore.h"

namespace {

constexpr const char* kTitle = "A title of exactly 32 characters";

void Fill(TitleStore& store) {
    for (GroupId group = 1; group <= kGroups; ++group) {
        for (TrackNo track = 0; track <= kTracks; ++track) {
            store.StoreReceived(group, track, kTitle);
        }
    }
}

// One store for all, full, as after a complete fetch.
TitleStore& FullStore() {
    static const auto store = [] {
        auto filled = std::make_unique<TitleStore>();
        Fill(*filled);
        return filled;
    }();
    return *store;
}

// Walks through all groups and tracks in the order in which the plans of the link do.
class Walk {
public:
    void Next() {
        track = track == kTracks ? 0 : track + 1;
        group = track != 0 ? group : group % kGroups + 1;
    }

    GroupId group = 1;
    TrackNo track = 0;
};

template <class Operation>
void ForEach(benchmark::State& state, Operation operation) {
    TitleStore& store = FullStore();
    Walk walk;
    for (auto _ : state) {
        benchmark::DoNotOptimize(operation(store, walk.group, walk.track));
        walk.Next();
    }
}

void IsKnown(benchmark::State& state) {
    ForEach(state, [](TitleStore& store, GroupId group, TrackNo track) { return store.IsKnown(group, track); });
}
BENCHMARK(IsKnown);

void IsEdited(benchmark::State& state) {
    ForEach(state, [](TitleStore& store, GroupId group, TrackNo track) { return store.IsEdited(group, track); });
}
BENCHMARK(IsEdited);

void GetTitle(benchmark::State& state) {
    char text[kTitleSize];
    ForEach(state, [&](TitleStore& store, GroupId group, TrackNo track) { return store.GetTitle(group, track, text); });
}
BENCHMARK(GetTitle);

void StoreReceived(benchmark::State& state) {
    ForEach(state,
            [](TitleStore& store, GroupId group, TrackNo track) { return store.StoreReceived(group, track, kTitle); });
}
BENCHMARK(StoreReceived);

// Each edit is a real one: the text changes every time.
void EditTitle(benchmark::State& state) {
    const char* texts[] = {"One title of thirty-two letters.", "Two title of thirty-two letters."};
    unsigned turn = 0;
    ForEach(state, [&](TitleStore& store, GroupId group, TrackNo track) {
        turn += track == 0 && group == 1 ? 1U : 0U;
        return store.EditTitle(group, track, texts[turn % 2]);
    });
    FullStore().ResetAll();
    Fill(FullStore());
}
BENCHMARK(EditTitle);

// There are never more than a hundred edits to undo, so they are made anew, outside the time, and the time is one undo's.
void UndoEdit(benchmark::State& state) {
    constexpr int kEdits = 100;
    TitleStore& store = FullStore();
    char text[kTitleSize];
    GroupId group = 0;
    TrackNo track = 0;
    for (auto _ : state) {
        for (int i = 0; i < kEdits; ++i) {
            store.EditTitle(i * 19 + 1, i % kTracks, "edited");
        }
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kEdits; ++i) {
            benchmark::DoNotOptimize(store.UndoEdit(&group, &track, text));
        }
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(elapsed.count() / kEdits);
    }
}
BENCHMARK(UndoEdit)->UseManualTime()->Iterations(20000);

// Resident memory of this process in KiB.
long ResidentKiB() {
    std::ifstream status("/proc/self/status");
    std::string word;
    long value = 0;
    while (status >> word) {
        if (word == "VmRSS:" && status >> value) {
            return value;
        }
    }
    return 0;
}

void PrintMemory() {
    const long before = ResidentKiB();
    FullStore();
    const long after = ResidentKiB();
    std::printf("store with every title present: %ld KiB resident, %zu bytes of it the object itself\n", after - before,
                sizeof(TitleStore));
}

}  // namespace

int main(int argc, char** argv) {
    // First of all, before the heap has free room that would hide a part of the store.
    PrintMemory();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
