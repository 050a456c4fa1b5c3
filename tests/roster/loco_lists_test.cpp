#include "handheld/text_encoding.h"
#include "roster/loco_csv.h"
#include "roster/loco_json.h"
#include "roster/table_csv.h"

#include <gtest/gtest.h>

namespace hr::tests
{

TEST(LocoLists, ACellSaysAllOfItsFieldAndAMissingColumnNothing)
{
    LocoRecord present{FitLocoName(QStringLiteral("DA")), {}, {}, 1, 7};
    present.modes.at(1) = present.modes.at(2) = 1;
    struct Row {
        const char *csv;
        std::array<int, 4> modes; // of f0 .. f3
    };
    for (const Row &row : {Row{"Adresse;Tast\n3;2 3\n", {0, 0, 1, 1}}, Row{"Adresse;Tast\n3;\n", {0, 0, 0, 0}},
             Row{"Adresse;Symbol;Tast\n3;9\n", {0, 0, 0, 0}}, Row{"Adresse;Symbol\n3;9\n", {0, 1, 1, 0}}}) {
        const LocoList list = ReadLocoCsv(row.csv);
        ASSERT_EQ(list.locos.size(), 1U) << row.csv << FaultsText(list.faults).toStdString();
        const LocoRecord applied = Applied(list.locos.front(), present);
        for (size_t f = 0; f < row.modes.size(); ++f)
            EXPECT_EQ(applied.modes.at(f), row.modes.at(f)) << row.csv << " f" << f;
        EXPECT_EQ(applied.multiUni, 1);
    }
}

TEST(LocoLists, EmptyRecordsOfAJsonListArePassedOver)
{
    const LocoList list = ReadLocoJson(
        R"([{"adresse":5,"leer":true},{"adresse":3,"name":"DA"},{"adresse":7,"leer":false,"symbol":1}])");
    EXPECT_TRUE(list.faults.empty());
    ASSERT_EQ(list.locos.size(), 2U);
    EXPECT_EQ(list.locos.front().address, 3);
    EXPECT_EQ(list.locos.back().address, 7);
}

/// An empty cell says "none", which the handheld may hold in more than one form.
TEST(TableLists, AnEmptyAddressChangesNothingWhereNoneStands)
{
    struct Row {
        const char *csv;
        quint8 high;
        bool changes;
    };
    for (const Row &row :
        {Row{"Fahrstraße;Rückmelder\n2;\n", 0x00, false}, Row{"Fahrstraße;Rückmelder\n2;\n", 0xFF, false},
            Row{"Fahrstraße;Rückmelder\n2;\n", 0x01, true}, Row{"Fahrstraße;Rückmelder\n1;\n", 0x01, false}}) {
        Routes routes{};
        routes.at(4) = routes.at(5) = row.high;
        RecordValue value = routes;
        const TableChanges changes = ReadTableCsv(row.csv, RecordKind::RouteTable);
        ASSERT_TRUE(changes.faults.empty()) << FaultsText(changes.faults).toStdString();
        changes.apply(value);
        EXPECT_EQ(std::get<Routes>(value) != routes, row.changes) << row.csv << static_cast<int>(row.high);
    }
}

} // namespace hr::tests
