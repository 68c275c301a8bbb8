#include "PacedLine.h"

#include <gtest/gtest.h>

namespace mainunit {
namespace {

constexpr std::int64_t kByteNs = 1'000'000;  // at 10000 bits a second

TEST(PacedLine, GivesEachByteItsTime) {
    PacedLine line(10'000);
    EXPECT_FALSE(line.NextNs().has_value());
    line.Add("abcdefghijkl", 5 * kByteNs);
    EXPECT_EQ(line.NextNs(), 13 * kByteNs) << "a bunch of eight";
    EXPECT_EQ(line.Take(6 * kByteNs - 1).bytes, "");
    EXPECT_EQ(line.Take(6 * kByteNs).bytes, "a");
    EXPECT_EQ(line.Take(9 * kByteNs + 5).bytes, "bcd");
    EXPECT_EQ(line.NextNs(), 17 * kByteNs);

    line.Add("XY", 10 * kByteNs);
    PacedLine::Taken rest = line.Take(17 * kByteNs);
    EXPECT_EQ(rest.bytes, "efghijkl");
    EXPECT_EQ(rest.finished, std::vector<std::string>{"abcdefghijkl"});
    EXPECT_EQ(line.NextNs(), 19 * kByteNs) << "the next chunk waits for the line";
    EXPECT_EQ(line.Take(19 * kByteNs).bytes, "XY");
}

TEST(PacedLine, OrdersByDueTimeButCutsNoChunk) {
    PacedLine line(10'000);
    line.Add("late", 100 * kByteNs);
    line.Add("one", 10 * kByteNs);
    line.Add("two", 10 * kByteNs);
    EXPECT_EQ(line.Take(11 * kByteNs).bytes, "o");
    line.Add("zero", 0);
    EXPECT_EQ(line.Take(50 * kByteNs).bytes, "nezerotwo");
    EXPECT_EQ(line.Take(1000 * kByteNs).bytes, "late");
}

TEST(PacedLine, HoldsNoMoreThanItsLimit) {
    PacedLine line(10'000);
    const std::string block(1024, 'x');
    for (int count = 0; count < 64; ++count) {
        EXPECT_TRUE(line.Add(block, 0));
    }
    EXPECT_FALSE(line.Add("x", 0));
    line.Take(kByteNs);
    EXPECT_TRUE(line.Add("x", 0));
}

}  // namespace
}  // namespace mainunit
