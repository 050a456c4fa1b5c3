#include "program/settings_file.h"

#include "platform/files.h"
#include "tests/support/virtual_world.h"

namespace hr::tests
{

class Settings : public VirtualWorld
{
protected:
    QString inf() const { return folder.path() + QStringLiteral("/konf/ComPort.inf"); }
};

TEST_F(Settings, SettingsFileKeepsWhatItHeld)
{
    struct Row {
        const char *file;
        const char *portText;
        int kind;
        const char *written;
    };
    const Row rows[] = {
        {"3\r\n3\r\n", "3", 3, "3\r\n3\r\n"},
        {"\"3\"\r\n1\r\n", "3", 1, "\"3\"\r\n1\r\n"},
        {"\" ttyUSB0 \"\n2\n", " ttyUSB0 ", 2, "\" ttyUSB0 \"\r\n2\r\n"},
        {"ttyS1\r\n\"3\"", "ttyS1", 3, "\"ttyS1\"\r\n3\r\n"},
        {"\"a,b\",3", "a,b", 3, "\"a,b\"\r\n3\r\n"},
        {"", "", 0, "\r\n\r\n"},
        {"7", "7", 0, "7\r\n\r\n"},
        {"\r\n9\r\n", "", 0, "\r\n\r\n"},
    };
    for (const Row &row : rows) {
        ASSERT_TRUE(ReplaceFile(inf(), row.file));
        const LinkSettings settings = ReadSettings();
        EXPECT_EQ(settings.port.text, QString::fromUtf8(row.portText)) << row.file;
        EXPECT_EQ(settings.interfaceType, row.kind) << row.file;
        WriteSettings(settings);
        EXPECT_EQ(ReadWholeFile(inf()), QByteArray(row.written)) << row.file;
    }
}

TEST_F(Settings, MissingFolderIsReportedOnceARun)
{
    SetProgramFolder(folder.path() + QStringLiteral("/nowhere"));
    user.acceptAnyBox();
    EXPECT_EQ(ReadSettings().interfaceType, InterfaceNone);
    WriteSettings({{QStringLiteral("Demo"), false}, InterfaceDirect});
    WriteSettings({{QStringLiteral("Demo"), false}, InterfaceDirect});
    EXPECT_EQ(user.boxes.size(), 1);
    EXPECT_EQ(ReadSettings().interfaceType, InterfaceDirect); // as the next round of the start does
    EXPECT_EQ(ReadSettings().port.text, QStringLiteral("Demo"));
}

} // namespace hr::tests
