// What is done, undone and saved of a document.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

#include "document/engine/ErrorCode.h"
#include "widget/edit/EditHistory.h"

namespace velko::vkit {
namespace {

using velko::pdf::AnnotId;
using velko::pdf::AnnotRecord;

// Annotations of one page by their numbers, as an engine holds them.
class Annots : public velko::pdf::IAnnotEditor {
public:
    std::vector<velko::pdf::ListedAnnot> ListAnnots(std::int32_t /*nPage*/) override { return {}; }
    AnnotId AddAnnot(std::int32_t /*nPage*/, const AnnotRecord& record) override {
        shown[++m_nLast] = record.strContents;
        return m_nLast;
    }
    void ChangeAnnot(std::int32_t /*nPage*/, AnnotId nId, const AnnotRecord& record) override {
        shown.at(nId) = record.strContents;
    }
    void RemoveAnnot(std::int32_t /*nPage*/, AnnotId nId) override {
        m_removed[nId] = shown.at(nId);
        shown.erase(nId);
    }
    void RestoreAnnot(std::int32_t /*nPage*/, AnnotId nId) override {
        shown[nId] = m_removed.at(nId);
        m_removed.erase(nId);
    }
    std::uint64_t Revision() const override { return 0; }

    std::map<AnnotId, std::string> shown;

private:
    std::map<AnnotId, std::string> m_removed;
    AnnotId m_nLast = 0;
};

AnnotRecord Saying(const std::string& strText) {
    AnnotRecord record;
    record.strContents = strText;
    return record;
}

class Reader {
public:
    void Add(const std::string& strText) {
        Did({AnnotEdit::Kind::Add, 0, annots.AddAnnot(0, Saying(strText)), {}, Saying(strText)});
    }
    void Change(AnnotId nId, const std::string& strText) {
        const AnnotEdit edit{AnnotEdit::Kind::Change, 0, nId, Saying(annots.shown.at(nId)),
                             Saying(strText)};
        Redo(annots, edit);
        Did(edit);
    }
    void Remove(AnnotId nId) {
        const AnnotEdit edit{AnnotEdit::Kind::Remove, 0, nId, Saying(annots.shown.at(nId)), {}};
        Redo(annots, edit);
        Did(edit);
    }
    bool GoBack() {
        const EditStep* const pStep = history.ToUndo();
        if (pStep == nullptr) {
            return false;
        }
        Undo(annots, pStep->edits[0]);
        history.Undone();
        return true;
    }
    bool GoOn() {
        const EditStep* const pStep = history.ToRedo();
        if (pStep == nullptr) {
            return false;
        }
        Redo(annots, pStep->edits[0]);
        history.Redone();
        return true;
    }
    void Did(AnnotEdit edit) { history.Did({"step", {std::move(edit)}}); }

    Annots annots;
    EditHistory history;
};

}

// Whatever was done: what is seen at a point is seen again there, and what differs from
// the file is told as modified, what does not, as not.
TEST(EditHistoryTest, GoingBackAndForthComesToWhatWasSeen) {
    for (unsigned nSeed = 0; nSeed < 40; ++nSeed) {
        SCOPED_TRACE(nSeed);
        std::mt19937 random(nSeed);
        Reader reader;
        std::map<EditHistory::Point, std::map<AnnotId, std::string>> seen;
        EditHistory::Point nSaved = reader.history.Now();
        for (int i = 0; i < 200; ++i) {
            const auto nPick = random() % 8;
            auto& shown = reader.annots.shown;
            if (nPick < 2 || shown.empty()) {
                reader.Add(std::to_string(i));
            } else if (nPick == 2) {
                reader.Change(shown.begin()->first, "changed " + std::to_string(i));
            } else if (nPick == 3) {
                reader.Remove(std::prev(shown.end())->first);
            } else if (nPick < 6) {
                reader.GoBack();
            } else if (nPick == 6) {
                reader.GoOn();
            } else {
                nSaved = reader.history.Now();
                reader.history.Saved(nSaved);
            }
            const auto [it, bNew] = seen.try_emplace(reader.history.Now(), shown);
            ASSERT_EQ(it->second, shown) << "one point, one state";
            ASSERT_EQ(reader.history.IsModified(), reader.history.Now() != nSaved);
        }
        while (reader.GoBack()) {
        }
        EXPECT_TRUE(reader.annots.shown.empty());
    }
}

// A step after the saved one was undone leads elsewhere; so does what was saved while
// the reader went on.
TEST(EditHistoryTest, WhatIsSavedIsAPointNotAPlaceInTheList) {
    Reader reader;
    reader.Add("one");
    const auto nOne = reader.history.Now();
    reader.Add("two");
    reader.history.Saved(nOne);
    EXPECT_TRUE(reader.history.IsModified()) << "the save began before";
    reader.GoBack();
    EXPECT_FALSE(reader.history.IsModified());
    reader.GoBack();
    reader.Add("other");
    EXPECT_TRUE(reader.history.IsModified());
    EXPECT_FALSE(reader.GoOn()) << "what was undone is gone";
    reader.history.SavedNowhere();
    reader.GoBack();
    EXPECT_TRUE(reader.history.IsModified());
}

TEST(EditHistoryTest, MuchThatWasDoneIsForgottenAtItsOldEnd) {
    Reader reader;
    for (std::size_t i = 0; i < EditHistory::kMostSteps + 5; ++i) {
        reader.Add("a note");
    }
    std::size_t nBack = 0;
    while (reader.GoBack()) {
        ++nBack;
    }
    EXPECT_EQ(nBack, EditHistory::kMostSteps);
    EXPECT_EQ(reader.annots.shown.size(), 5U);
    EXPECT_TRUE(reader.history.IsModified()) << "the saved state is out of reach";

    reader.Add(std::string(EditHistory::kMostBytes, 'x'));
    EXPECT_TRUE(reader.GoBack()) << "the last step, whatever it takes";
    EXPECT_FALSE(reader.GoBack());
}

}
