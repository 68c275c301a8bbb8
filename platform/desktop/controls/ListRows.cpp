#include "ListRows.h"

#include <algorithm>
#include <utility>

namespace desktop {

void ListRows::Insert(int index, std::string text) {
    rows.insert(rows.begin() + index, Row{std::move(text), 0, 0});
    offsets.resize(std::min(offsets.size(), static_cast<std::size_t>(index) + 1));
}

void ListRows::Delete(int index) {
    rows.erase(rows.begin() + index);
    offsets.resize(std::min(offsets.size(), static_cast<std::size_t>(index) + 1));
}

void ListRows::Clear() {
    rows.clear();
    offsets.resize(1);
}

void ListRows::SetHeight(int index, int height) {
    rows[static_cast<std::size_t>(index)].height = height;
    offsets.resize(std::min(offsets.size(), static_cast<std::size_t>(index) + 1));
}

int ListRows::Offset(int index) const {
    const auto wanted = static_cast<std::size_t>(index);
    while (offsets.size() <= wanted) {
        offsets.push_back(offsets.back() + rows[offsets.size() - 1].height);
    }
    return offsets[wanted];
}

int ListRows::Find(int distance) const {
    if (distance < 0) {
        return -1;
    }
    if (distance >= Offset(Count())) {
        return Count();
    }
    return static_cast<int>(std::upper_bound(offsets.begin(), offsets.end(), distance) - offsets.begin()) - 1;
}

int ListRows::FirstThatFits(int last, int height) const {
    int first = last;
    const int end = Offset(last + 1);
    while (first > 0 && end - Offset(first - 1) <= height) {
        --first;
    }
    return first;
}

}  // namespace desktop
