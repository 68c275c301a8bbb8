// The store against a plain model of the states of its entries, under random operations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>

#include "TitleStore.h"

namespace {

enum class State { kUnknown, kEmpty, kReceived, kEdited };

struct Entry {
    State state = State::kUnknown;
    std::string text;
    int edits = 0;
    bool sent = false;
};

struct Record {
    GroupId group;
    TrackNo track;
    std::string text;
};

// Titles by number; what is missing has never been answered for. The undo is a list whose forgotten records leave a hole,
// since a hole takes room until it is passed on the way back.
struct Model {
    std::map<GroupId, Entry> groups;
    std::map<GroupId, std::map<TrackNo, Entry>> tracks;  // a group is in here while it has a table
    std::map<GroupId, int> counts;
    std::deque<std::optional<Record>> records;

    Entry* Find(GroupId group, TrackNo track) {
        if (group < 1 || group > 1998 || track > 99) {
            return nullptr;
        }
        if (track <= 0) {
            return &groups[group];
        }
        return tracks.count(group) != 0 ? &tracks[group][track] : nullptr;
    }

    bool IsOpen(GroupId group) { return Find(group, 0) != nullptr && groups[group].state != State::kUnknown; }

    Entry* Reachable(GroupId group, TrackNo track) {
        Entry* entry = Find(group, track);
        const bool open = entry != nullptr && IsOpen(group) && entry->state != State::kUnknown;
        return open && (track <= 0 || track <= counts[group]) ? entry : nullptr;
    }

    int Receive(GroupId group, TrackNo track, const std::optional<std::string>& text) {
        if (group < 1 || group > 1998 || track > 99) {
            return 0;
        }
        if (track > 0) {
            tracks[group];
            counts[group] = text ? std::max(counts[group], track) : counts[group];
        }
        *Find(group, track) = {text ? State::kReceived : State::kEmpty, text.value_or(""), 0, false};
        return 1;
    }

    int Edit(GroupId group, TrackNo track, const std::string& text) {
        Entry* entry = Reachable(group, track);
        if (entry != nullptr && entry->text != text) {
            records.push_back(Record{group, std::max(track, 0), entry->text});
            if (records.size() > 100) {
                records.pop_front();
            }
            *entry = {State::kEdited, text, std::min(entry->edits + 1, 255), false};
        }
        return entry != nullptr ? 1 : 0;
    }

    int Forget(GroupId group, TrackNo track) {
        Entry* entry = Reachable(group, track);
        if (entry == nullptr) {
            return 0;
        }
        *entry = {};
        PunchHoles(group, std::max(track, 0), std::max(track, 0));
        return 1;
    }

    void ClearSent() {
        for (auto& [group, entry] : groups) {
            entry.sent = false;
        }
        for (auto& [group, entries] : tracks) {
            for (auto& [track, entry] : entries) {
                entry.sent = false;
            }
        }
    }

    void PunchHoles(GroupId group, TrackNo first, TrackNo last) {
        for (std::optional<Record>& record : records) {
            if (record && record->group == group && record->track >= first && record->track <= last) {
                record.reset();
            }
        }
    }

    std::optional<Record> Undo() {
        std::size_t count = records.size();
        while (count > 0 && !records[count - 1]) {
            --count;
        }
        const std::optional<Record> record = count > 0 ? records[count - 1] : std::nullopt;
        Entry* entry = nullptr;
        if (record) {
            entry = record->track == 0 ? Reachable(record->group, 0) : Find(record->group, record->track);
        }
        if (entry == nullptr) {
            return std::nullopt;
        }
        entry->text = record->text;
        entry->sent = false;
        entry->edits = std::max(entry->edits - 1, 0);
        entry->state = entry->edits == 0 ? State::kReceived : State::kEdited;
        records.resize(count - 1);
        return record;
    }
};

const GroupId kSomeGroups[] = {-1, 0, 1, 2, 999, 1000, 1998, 1999};
const TrackNo kSomeTracks[] = {std::numeric_limits<TrackNo>::min(), 0, 1, 2, 3, 98, 99, 100};

class ModelRun {
public:
    explicit ModelRun(unsigned seed) : random(seed) {}

    void Step() {
        const GroupId group = kSomeGroups[Draw(8)];
        const TrackNo track = kSomeTracks[Draw(8)];
        const std::string text = kTexts[Draw(5)];
        const std::optional<std::string> reply = Draw(4) != 0 ? std::optional(text) : std::nullopt;
        switch (Draw(40)) {
            case 0: return Clear(group);
            case 1: return DropTracks(group);
            case 2: return Draw(10) == 0 ? Reset() : Clear(group);
            case 3:
            case 4: EXPECT_EQ(store.DeleteTitle(group, track), model.Forget(group, track)); return;
            case 5:
            case 6: return Send(group, track, text);
            case 7:
            case 8:
            case 9:
            case 10: return Undo();
            case 11:
            case 12:
            case 13:
                EXPECT_EQ(store.StoreReceived(group, track, Pointer(reply)), model.Receive(group, track, reply));
                return;
            default: break;
        }
        if (Draw(3) == 0) {
            EXPECT_EQ(store.StoreReceived(group, track, Pointer(reply)), model.Receive(group, track, reply));
            return;
        }
        // Nobody edits the tracks of an Album.
        const TrackNo edited = group > 999 ? std::min(track, 0) : track;
        EXPECT_EQ(store.EditTitle(group, edited, text.c_str()), model.Edit(group, edited, text));
    }

    void Compare() {
        for (GroupId group : kSomeGroups) {
            const bool counted = model.IsOpen(group) && model.tracks.count(group) != 0;
            EXPECT_EQ(store.GetTrackCount(group), counted ? model.counts[group] : -1) << group;
            for (TrackNo track : kSomeTracks) {
                CompareEntry(group, track);
                if (testing::Test::HasFailure()) {
                    ADD_FAILURE() << "at " << group << "/" << track;
                    return;
                }
            }
        }
        const bool undo = std::any_of(model.records.begin(), model.records.end(), [](auto& r) { return r.has_value(); });
        EXPECT_EQ(store.CanUndo(), undo ? 1 : 0);
    }

    int undone = 0;

private:
    static constexpr const char* kTexts[] = {"", "a", "b", "a longer title", "exactly thirty-two bytes of text"};

    unsigned Draw(unsigned count) { return static_cast<unsigned>(random() % count); }
    static const char* Pointer(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

    void Reset() {
        store.ResetAll();
        model = Model();
    }

    void Clear(GroupId group) {
        const bool open = model.IsOpen(group);
        EXPECT_EQ(store.ClearGroup(group), open ? 1 : 0);
        if (open) {
            model.PunchHoles(group, 0, 99);
            model.groups.erase(group);
            model.tracks.erase(group);
            model.counts.erase(group);
        }
    }

    void DropTracks(GroupId group) {
        const bool album = group >= 1000 && group <= 1998;
        EXPECT_EQ(store.DropAlbumTracks(group), album ? 1 : 0);
        if (album) {
            model.tracks.erase(group);
            model.counts.erase(group);
        }
    }

    // What the link does in a send, in any order.
    void Send(GroupId group, TrackNo track, const std::string& text) {
        Entry* entry = model.Reachable(group, track);
        const bool sendable = entry != nullptr && entry->state != State::kEmpty;
        EXPECT_EQ(store.NoteSent(group, track, text.c_str()), sendable ? 1 : 0);
        if (sendable) {
            *entry = {State::kEdited, entry->text, std::min(entry->edits + 1, 255), entry->text == text};
        }
        if (Draw(20) == 0) {
            store.ClearSent();
            model.ClearSent();
        }
        if (Draw(3) == 0) {
            EXPECT_EQ(store.ForgetSent(group, track), sendable && entry->sent ? model.Forget(group, track) : 0);
        }
    }

    void Undo() {
        Record given{0, 0, ""};
        char text[kTitleSize] = "";
        const int done = store.UndoEdit(&given.group, &given.track, text);
        const std::optional<Record> expected = model.Undo();
        ASSERT_EQ(done, expected ? 1 : 0);
        if (expected) {
            EXPECT_EQ(given.group, expected->group);
            EXPECT_EQ(given.track, expected->track);
            EXPECT_EQ(text, expected->text);
            ++undone;
        }
    }

    void CompareEntry(GroupId group, TrackNo track) {
        const Entry* entry = model.Find(group, track);
        const bool reachable = model.Reachable(group, track) != nullptr;
        const State state = entry != nullptr ? entry->state : State::kUnknown;
        const int expected = state == State::kEdited ? TS_EDITED : (state == State::kReceived ? TS_RECEIVED : TS_NONE);
        const int known = store.IsKnown(group, track);
        const int edited = store.IsEdited(group, track);
        const int given = store.GetState(group, track);
        EXPECT_EQ(known, state != State::kUnknown ? 1 : 0);
        EXPECT_EQ(given, entry != nullptr ? expected : -1);
        EXPECT_EQ(store.IsDisc(group, track), reachable ? (group <= 999 ? 1 : 0) : -1);
        EXPECT_EQ(store.IsSent(group, track), reachable && entry->sent ? 1 : 0);
        // Whatever the model says: no third state, "edited" has one meaning, and no text without an answer.
        EXPECT_LE(given, TS_EDITED);
        EXPECT_EQ(edited, given == TS_EDITED ? 1 : 0);
        EXPECT_TRUE(known == 1 || given <= TS_NONE);
        char text[kTitleSize];
        std::memset(text, '#', sizeof text);
        const int found = store.GetTitle(group, track, text);
        EXPECT_EQ(found, reachable && expected != TS_NONE ? 1 : 0);
        if (found == 1) {
            EXPECT_STREQ(text, entry->text.c_str());
        } else {
            EXPECT_EQ(std::string(text, sizeof text), std::string(sizeof text, '#'));
        }
    }

    std::mt19937 random;
    TitleStore store;
    Model model;
};

TEST(TitleStoreModelTest, RandomOperations) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        ModelRun run(seed);
        for (int step = 0; step < 2000; ++step) {
            SCOPED_TRACE(testing::Message() << "step " << step);
            run.Step();
            run.Compare();
            if (testing::Test::HasFailure()) {
                return;
            }
        }
        // A run that hardly ever had anything to undo would have compared little.
        EXPECT_GT(run.undone, 50);
    }
}

}  // namespace
