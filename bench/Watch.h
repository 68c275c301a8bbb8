// A stopwatch, and the middle of what it showed.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

class Watch {
public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    }

private:
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

// Of at least one value.
inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}
