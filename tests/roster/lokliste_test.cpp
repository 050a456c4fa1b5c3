// The Lokliste as a document: states, faults, steps and what the handheld holds.

#include "roster/lokliste.h"

#include "platform/text.h"

#include <gtest/gtest.h>

namespace hr::tests
{

class LoklisteTest : public ::testing::Test
{
protected:
    LoklisteTest()
    {
        list.onRows = [this](const std::vector<int> &rows) { told.insert(rows.begin(), rows.end()); };
        list.onReset = [this] { ++resets; };
        add({{3, named(u"E 94")}, {8, named(u"BR 80")}, {24, named(u"BR 24")}}, u"a.csv");
    }

    static LocoRecord named(QStringView name, int symbol = 0)
    {
        return {FitLocoName(name.toString()), {}, {}, 0, symbol};
    }

    void add(const std::vector<RosterLoco> &locos, QStringView source, Lokliste::Doubled answer = {})
    {
        std::vector<ListedLoco> listed;
        for (const RosterLoco &loco : locos)
            listed.push_back(Listed(loco));
        EXPECT_EQ(list.add(listed, source.toString(), [=](const Lok &, const RosterLoco &) { return answer; }),
            answer != Lokliste::Doubled::Stop);
    }

    /// "3 E 94 aus Datei"
    QStringList shown() const
    {
        QStringList rows;
        for (int row = 0; row < list.size(); ++row)
            rows += QStringLiteral("%1 %2 %3")
                        .arg(list.at(row).address)
                        .arg(WithoutTrailingBlanks(list.at(row).record.name), StateText(list.state(row)));
        return rows;
    }

    void readdress(int row, int address)
    {
        list.change({row}, [address](Lok &lok) { lok.address = address; });
    }

    Lokliste list;
    std::set<int> told;
    int resets = 0;
};

TEST_F(LoklisteTest, StatesSayHowTheListStandsToTheHandheld)
{
    list.noteHeld(3, named(u"E 94"));
    list.noteHeld(8, named(u"ANDERS"));
    EXPECT_EQ(told, (std::set<int>{0, 1}));
    list.change({2}, [](Lok &lok) { lok.record.name = TypedName(QStringLiteral("br 24 neu")); });
    EXPECT_EQ(shown(),
        QStringList({QStringLiteral("3 E 94 im Handregler"), QStringLiteral("8 BR 80 aus Datei"),
            QStringLiteral("24 BR 24 NEU geändert")}));
    list.undo();
    EXPECT_EQ(list.state(2), LokState::FromFile) << "it is again as it came";
    list.forgetHeld();
    EXPECT_EQ(list.state(0), LokState::FromFile) << "another handheld may hold something else";
    list.load({{5, named(u"ALT")}}, {});
    EXPECT_EQ(shown(), QStringList(QStringLiteral("5 ALT unbekannt")));
    EXPECT_FALSE(list.canUndo());
    // Blanks and cases of the handheld's characters are no difference.
    list.noteHeld(5, named(u"ALT"));
    list.settle({0}, QStringLiteral("Handregler"));
    EXPECT_EQ(list.state(0), LokState::InHandheld);
}

TEST_F(LoklisteTest, FaultsAreNamedAndGoWithTheirReason)
{
    told.clear();
    readdress(1, 3);
    EXPECT_EQ(told, (std::set<int>{0, 1})) << "the other one of the two as well";
    EXPECT_EQ(list.faults(0), QStringList(QStringLiteral("Die Adresse 3 steht mehrmals in der Liste")));
    told.clear();
    list.undo();
    EXPECT_EQ(told, (std::set<int>{0, 1}));
    EXPECT_TRUE(list.faults(0).isEmpty() && list.faults(1).isEmpty());
    for (const int address : {0, 10000}) {
        readdress(2, address);
        EXPECT_EQ(list.state(2), LokState::Invalid);
        EXPECT_TRUE(list.faults(2).constFirst().contains(u"1 bis 9999"));
    }
    list.change({0}, [](Lok &lok) { lok.record.name = TypedName(QStringLiteral("")); });
    list.change({1}, [](Lok &lok) { lok.record.name = TypedName(QStringLiteral("Ω 1")); });
    EXPECT_EQ(list.faults(0), QStringList(QStringLiteral("Der Name fehlt")));
    EXPECT_TRUE(list.faults(1).constFirst().endsWith(u"Ω"));
}

TEST_F(LoklisteTest, EveryStepCanBeTakenBackAndDoneAgain)
{
    std::vector<QStringList> states{shown()};
    const auto step = [&](auto work) {
        work();
        states.push_back(shown());
    };
    step([&] { EXPECT_EQ(list.duplicate({0, 1}), 2); });
    EXPECT_EQ(states.back().mid(2, 2),
        QStringList({QStringLiteral("4 E 94 geändert"), QStringLiteral("9 BR 80 geändert")}));
    step([&] { list.remove({0, 4}); });
    step([&] { EXPECT_EQ(list.at(list.addNew()).address, 10) << "behind the last one"; });
    step([&] { add({{8, named(u"NEU")}, {77, named(u"E 77")}}, u"b.csv", Lokliste::Doubled::Replace); });
    step([&] {
        const Lokliste::OneStep one(list);
        readdress(0, 100);
        list.addNew();
        readdress(1, 200);
    });
    add({{77, named(u"X")}}, u"c.csv", Lokliste::Doubled::Keep);
    add({{5, named(u"X")}, {77, named(u"X")}}, u"c.csv", Lokliste::Doubled::Stop);
    list.change({0}, [](Lok &) {});
    EXPECT_EQ(shown(), states.back()) << "nothing that changes nothing is a step";
    for (size_t i = states.size() - 1; i-- > 0;) {
        list.undo();
        EXPECT_EQ(shown(), states.at(i));
    }
    list.undo();
    EXPECT_TRUE(list.size() == 0 && !list.canUndo());
    list.redo();
    for (size_t i = 1; i < states.size(); ++i) {
        list.redo();
        EXPECT_EQ(shown(), states.at(i));
    }
    EXPECT_FALSE(list.canRedo());
    list.undo();
    {
        const Lokliste::OneStep nothing(list);
        list.change({0}, [](Lok &) {});
    }
    list.redo();
    EXPECT_EQ(shown(), states.back()) << "what is no step leaves those that can be done again";
    for (int i = 0; i < 2 * Lokliste::MostSteps; ++i)
        readdress(0, i + 1);
    for (int i = 0; i < Lokliste::MostSteps; ++i)
        list.undo();
    EXPECT_EQ(list.at(0).address, Lokliste::MostSteps);
}

/// The old address is deleted in the handheld only where nothing else needs it and it holds still what came from there.
TEST_F(LoklisteTest, ARenumberedLocoLeavesItsOldAddressBehind)
{
    for (int row = 0; row < list.size(); ++row)
        list.noteHeld(list.at(row).address, list.at(row).record);
    EXPECT_EQ(list.leftBehind(0), 0);
    readdress(0, 33);
    EXPECT_EQ(list.leftBehind(0), 3);
    readdress(1, 3);
    EXPECT_EQ(list.leftBehind(0), 0) << "another one takes its place";
    EXPECT_EQ(list.leftBehind(1), 8);
    list.noteHeld(8, named(u"ANDERE"));
    EXPECT_EQ(list.leftBehind(1), 0) << "it is another loco's now";
    EXPECT_EQ(list.at(list.duplicate({2})).address, 25);
    EXPECT_EQ(list.leftBehind(3), 0) << "a copy leaves nothing";
}

TEST_F(LoklisteTest, WhatASourceDoesNotSayStaysAsTheHandheldHasIt)
{
    LocoRecord record = named(u"ALT", 7);
    record.symbols.at(4) = 14;
    list.noteHeld(50, record);
    ListedLoco loco;
    loco.address = 50;
    loco.name = QStringLiteral("NEU");
    EXPECT_TRUE(list.add({loco}, QStringLiteral("roster.xml"),
        [](const Lok &, const RosterLoco &) { return Lokliste::Doubled::Keep; }));
    record.name = TypedName(QStringLiteral("NEU"));
    EXPECT_EQ(list.at(list.rowOfAddress(50)).record, record);
}

} // namespace hr::tests
