#include "UnitLibrary.h"

#include <algorithm>

namespace library {

std::string NameOf(const Entry& entry) {
    std::string name = entry.kind == GroupKind::kDisc ? "Disc " : "Album ";
    name += std::to_string(entry.group);
    if (entry.track > 0) {
        name += " track " + std::to_string(entry.track);
    }
    return name;
}

bool IsPrintable(char byte) {
    return byte >= ' ' && byte <= '~';
}

bool IsEntry(const Entry& entry) {
    return entry.group >= 1 && entry.group <= kLastGroup && entry.track >= 0 && entry.track <= kLastTrack;
}

bool UnitLibrary::Add(const Entry& entry) {
    if (!IsEntry(entry)) {
        return false;
    }
    Group& group = MutableGroups(entry.kind)[entry.group];
    if (entry.track > 0) {
        group.tracks.try_emplace(entry.track);
    }
    return true;
}

bool UnitLibrary::SetTitle(const Entry& entry, const std::string& text) {
    if (text.size() > kLongestTitle || !std::all_of(text.begin(), text.end(), IsPrintable) || !Add(entry)) {
        return false;
    }
    Group& group = MutableGroups(entry.kind)[entry.group];
    std::optional<std::string>& title = entry.track == 0 ? group.title : group.tracks[entry.track];
    title = text.substr(0, text.find_last_not_of(' ') + 1);
    return true;
}

const std::optional<std::string>* UnitLibrary::Find(const Entry& entry) const {
    const Groups& groups = GroupsOf(entry.kind);
    const auto group = groups.find(entry.group);
    if (group == groups.end()) {
        return nullptr;
    }
    if (entry.track == 0) {
        return &group->second.title;
    }
    const auto track = group->second.tracks.find(entry.track);
    return track == group->second.tracks.end() ? nullptr : &track->second;
}

bool UnitLibrary::Exists(const Entry& entry) const {
    return Find(entry) != nullptr;
}

const std::string* UnitLibrary::Title(const Entry& entry) const {
    const std::optional<std::string>* title = Find(entry);
    return title && *title ? &**title : nullptr;
}

}  // namespace library
