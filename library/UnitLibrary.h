// UnitLibrary: what the main unit holds. Which discs, albums and tracks exist, and their titles.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace library {

enum class GroupKind { kDisc = 0, kAlbum = 1 };

inline constexpr int kLastGroup = 999;
inline constexpr int kLastTrack = 99;
inline constexpr std::size_t kLongestTitle = 32;

// A disc or an album with track 0, or one of its tracks.
struct Entry {
    GroupKind kind = GroupKind::kDisc;
    int group = 1;  // 1 to 999
    int track = 0;  // 0 is the group's own title, 1 to 99 a track

    bool operator==(const Entry&) const = default;
};

// "Disc 12 track 3", "Album 7".
std::string NameOf(const Entry& entry);

// True if the numbers are in their ranges.
bool IsEntry(const Entry& entry);

// True for printable ASCII, blank included: the only bytes that a title of the main unit is made of.
bool IsPrintable(char byte);

// To exist and to have a title are two things: a disc that was never named exists without one. A plain value with no lock:
// it belongs to the thread of its main unit.
class UnitLibrary {
public:
    struct Group {
        std::optional<std::string> title;
        std::map<int, std::optional<std::string>> tracks;

        bool operator==(const Group&) const = default;
    };
    using Groups = std::map<int, Group>;

    // Makes the entry exist; a track brings its group with it. False if a number is out of range.
    bool Add(const Entry& entry);

    // Gives an entry its title and makes it exist. Blanks at the end are dropped, as they cannot be told from the filling
    // on the line; so 32 blanks are an empty title. False, and nothing changed, if a number is out of range or the text
    // is longer than 32 bytes or not printable ASCII.
    bool SetTitle(const Entry& entry, const std::string& text);

    bool Exists(const Entry& entry) const;

    // Null for an entry that has no title or does not exist. Valid until the entry changes.
    const std::string* Title(const Entry& entry) const;

    const Groups& GroupsOf(GroupKind kind) const { return kind == GroupKind::kDisc ? discs : albums; }

    bool operator==(const UnitLibrary&) const = default;

private:
    Groups& MutableGroups(GroupKind kind) { return kind == GroupKind::kDisc ? discs : albums; }
    const std::optional<std::string>* Find(const Entry& entry) const;

    Groups discs;
    Groups albums;
};

}  // namespace library
