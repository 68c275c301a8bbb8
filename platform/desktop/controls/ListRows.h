// The rows of a list box: their texts and values, how high they are, and where each of them begins.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace desktop {

// Indexes are those of rows that there are, unless a line says otherwise. Lengths are pixels.
class ListRows {
public:
    int Count() const { return static_cast<int>(rows.size()); }
    bool Has(int index) const { return index >= 0 && index < Count(); }

    // The index may be Count().
    void Insert(int index, std::string text);
    void Delete(int index);
    void Clear();

    const std::string& Text(int index) const { return At(index).text; }
    ULONG_PTR Value(int index) const { return At(index).value; }
    void SetValue(int index, ULONG_PTR value) { rows[static_cast<std::size_t>(index)].value = value; }
    int Height(int index) const { return At(index).height; }
    void SetHeight(int index, int height);

    // From the upper edge of row 0 to that of this one. Count() gives the length of all rows.
    int Offset(int index) const;
    // The row at a distance from the upper edge of row 0; Count() for one below all rows, -1 above.
    int Find(int distance) const;
    // The first row with which those up to and including `last` fit into a height; `last` if it does not fit itself.
    int FirstThatFits(int last, int height) const;

private:
    struct Row {
        std::string text;
        ULONG_PTR value = 0;
        int height = 0;
    };
    const Row& At(int index) const { return rows[static_cast<std::size_t>(index)]; }

    std::vector<Row> rows;
    // As far as they are known: a change of one row makes those behind it unknown.
    mutable std::vector<int> offsets{0};
};

}  // namespace desktop
