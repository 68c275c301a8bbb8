#include "LibraryText.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <vector>

namespace library {

namespace {

using Json = nlohmann::ordered_json;

// The parser lets the last of two equal names win in silence; a hand-edited library with disc 12 twice is a mistake.
class DoubledNames {
public:
    bool operator()(int, Json::parse_event_t event, Json& value) {
        if (event == Json::parse_event_t::object_start) {
            open.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            open.pop_back();
        } else if (event == Json::parse_event_t::key) {
            const auto& name = value.get_ref<const std::string&>();
            if (!open.back().insert(name).second && first.empty()) {
                first = name;
            }
        }
        return true;
    }

    const std::string& First() const { return first; }

private:
    std::vector<std::set<std::string>> open;
    std::string first;
};

// 1 to `last`, with no leading zeros or signs, so that one number has one name.
std::optional<int> ReadNumber(const std::string& name, int last) {
    int number = 0;
    const char* end = name.data() + name.size();
    const std::from_chars_result read = std::from_chars(name.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || number < 1 || number > last || name.front() == '0') {
        return std::nullopt;
    }
    return number;
}

// Fills a library from the parsed text and remembers the first thing that is wrong.
class LibraryReader {
public:
    explicit LibraryReader(UnitLibrary& library) : library(library) {}

    bool Read(const Json& root) {
        if (!root.is_object()) {
            return Fail("library", "is no object");
        }
        for (const auto& [name, value] : root.items()) {
            if (name != "discs" && name != "albums") {
                return Fail("library", "has the unknown name \"" + name + "\"");
            }
            if (!ReadGroups(name == "discs" ? GroupKind::kDisc : GroupKind::kAlbum, name, value)) {
                return false;
            }
        }
        return true;
    }

    const std::string& Error() const { return error; }

private:
    bool Fail(const std::string& where, const std::string& what) {
        error = where + " " + what;
        return false;
    }

    bool ReadGroups(GroupKind kind, const std::string& where, const Json& groups) {
        if (!groups.is_object()) {
            return Fail(where, "is no object");
        }
        for (const auto& [name, value] : groups.items()) {
            const std::optional<int> number = ReadNumber(name, kLastGroup);
            if (!number) {
                return Fail(where, "has \"" + name + "\" where a number from 1 to 999 is due");
            }
            if (!ReadGroup({kind, *number, 0}, value)) {
                return false;
            }
        }
        return true;
    }

    bool ReadGroup(const Entry& group, const Json& value) {
        if (!value.is_object()) {
            return Fail(NameOf(group), "is no object");
        }
        library.Add(group);
        for (const auto& [name, part] : value.items()) {
            if (name != "title" && name != "tracks") {
                return Fail(NameOf(group), "has the unknown name \"" + name + "\"");
            }
            if (name == "title" ? !ReadTitle(group, part) : !ReadTracks(group, part)) {
                return false;
            }
        }
        return true;
    }

    bool ReadTracks(const Entry& group, const Json& tracks) {
        if (!tracks.is_object()) {
            return Fail(NameOf(group) + " tracks", "is no object");
        }
        for (const auto& [name, value] : tracks.items()) {
            const std::optional<int> number = ReadNumber(name, kLastTrack);
            if (!number) {
                return Fail(NameOf(group) + " tracks", "has \"" + name + "\" where a number from 1 to 99 is due");
            }
            if (!ReadTitle({group.kind, group.group, *number}, value)) {
                return false;
            }
        }
        return true;
    }

    bool ReadTitle(const Entry& entry, const Json& value) {
        if (value.is_null()) {
            return library.Add(entry);
        }
        if (!value.is_string()) {
            return Fail(NameOf(entry), "has a title that is neither text nor null");
        }
        if (!library.SetTitle(entry, value.get_ref<const std::string&>())) {
            return Fail(NameOf(entry), "has a title that is longer than 32 characters or not printable ASCII");
        }
        return true;
    }

    UnitLibrary& library;
    std::string error;
};

Json TitleValue(const std::optional<std::string>& title) {
    return title ? Json(*title) : Json(nullptr);
}

Json GroupsValue(const UnitLibrary::Groups& groups) {
    Json list = Json::object();
    for (const auto& [number, group] : groups) {
        Json tracks = Json::object();
        for (const auto& [track, title] : group.tracks) {
            tracks[std::to_string(track)] = TitleValue(title);
        }
        Json value = Json::object();
        value["title"] = TitleValue(group.title);
        value["tracks"] = std::move(tracks);
        list[std::to_string(number)] = std::move(value);
    }
    return list;
}

}  // namespace

bool ParseLibrary(std::string_view text, UnitLibrary& library, std::string& error) {
    Json root;
    DoubledNames doubled;
    try {
        root = Json::parse(text, std::ref(doubled));
    } catch (const Json::exception& failure) {
        error = failure.what();
        return false;
    }
    if (!doubled.First().empty()) {
        error = "\"" + doubled.First() + "\" stands twice in the same place";
        return false;
    }
    UnitLibrary read;
    LibraryReader reader(read);
    if (!reader.Read(root)) {
        error = reader.Error();
        return false;
    }
    library = std::move(read);
    return true;
}

std::string FormatLibrary(const UnitLibrary& library) {
    Json root = Json::object();
    root["discs"] = GroupsValue(library.GroupsOf(GroupKind::kDisc));
    root["albums"] = GroupsValue(library.GroupsOf(GroupKind::kAlbum));
    return root.dump(2) + "\n";
}

}  // namespace library
