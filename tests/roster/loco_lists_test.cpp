#include "handheld/text_encoding.h"
#include "roster/loco_csv.h"

#include <gtest/gtest.h>

namespace hr::tests
{

TEST(LocoLists, ACellSaysAllOfItsFieldAndAMissingColumnNothing)
{
    BuildZeichensatz();
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

} // namespace hr::tests
