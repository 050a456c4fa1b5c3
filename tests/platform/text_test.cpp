#include "platform/text.h"

#include "platform/port_name.h"

#include <gtest/gtest.h>

#include <climits>

namespace hr::tests
{

TEST(Text, ValReadsLeadingDigitsOnly)
{
    const std::pair<const char *, int> rows[] = {{"", 0}, {"  12", 12}, {"12x3", 12}, {"1 2", 1}, {"-5", 0},
        {"+5", 0}, {"??", 0}, {"Rupo", 0}, {"9999", 9999}, {"007", 7}, {"99999999999999999999", INT_MAX}};
    for (const auto &[text, value] : rows)
        EXPECT_EQ(Val(QString::fromUtf8(text)), value) << text;
}

TEST(Text, PortTextsNameDevices)
{
#ifdef Q_OS_WIN
    const QString third = QStringLiteral("COM3");
#else
    const QString third = QStringLiteral("/dev/ttyS2");
#endif
    EXPECT_EQ(PortDevice(QStringLiteral(" 3 ")), third);
    EXPECT_EQ(PortDevice(QStringLiteral("ttyUSB0 ")), QStringLiteral("ttyUSB0"));
    for (const char *nothing : {"", "  ", "0", "123456"})
        EXPECT_TRUE(PortDevice(QString::fromUtf8(nothing)).isEmpty()) << nothing;
    EXPECT_TRUE(IsDemoPort(QStringLiteral(" dEMO ")));
    EXPECT_FALSE(IsDemoPort(QStringLiteral("Demo2")));
}

} // namespace hr::tests
