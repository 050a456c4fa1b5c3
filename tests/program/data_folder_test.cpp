#include "program/data_folder.h"

#include "platform/files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hr::tests
{

class DataFolders : public ::testing::Test
{
protected:
    void SetUp() override
    {
        put(QStringLiteral("prog/konf/hilfe.txt"), "alt");
        put(QStringLiteral("prog/konf/lok/a.bmp"), "A");
        put(QStringLiteral("prog/konf/lok/b.bmp"), "B");
    }

    void put(const QString &name, const QByteArray &content)
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        ASSERT_TRUE(ReplaceFile(path(name), content));
    }

    QString path(const QString &name) { return base.filePath(name); }
    QByteArray own(const QString &name)
    {
        return ReadWholeFile(path(QStringLiteral("own/konf/") + name)).value_or("-");
    }
    QString choose() { return ChooseDataFolder(path(QStringLiteral("prog")), path(QStringLiteral("own"))); }

    QTemporaryDir base{QDir::tempPath() + QStringLiteral("/Größe mit Blank-XXXXXX")};
};

TEST_F(DataFolders, AFolderThatCanBeWrittenKeepsItsData)
{
    EXPECT_EQ(choose(), path(QStringLiteral("prog")));
    EXPECT_FALSE(QDir(path(QStringLiteral("own"))).exists());
}

TEST_F(DataFolders, WhatASetUpHasInstalledKeepsThemElsewhere)
{
    put(QStringLiteral("prog/installiert.txt"), "");
    EXPECT_EQ(choose(), path(QStringLiteral("own")));
    EXPECT_EQ(own(QStringLiteral("lok/a.bmp")), "A");
}

TEST_F(DataFolders, AnUpdateReplacesOnlyWhatTheUserLeftAsItWas)
{
    const QString installed = path(QStringLiteral("prog"));
    const auto update = [&] { return FillDataFolder(installed, path(QStringLiteral("own"))); };
    ASSERT_TRUE(update());
    EXPECT_EQ(own(QStringLiteral("lok/a.bmp")), "A");
    put(QStringLiteral("own/konf/lok/a.bmp"), "mine");
    put(QStringLiteral("own/konf/lok/mine.bmp"), "mine too");
    QFile::remove(path(QStringLiteral("own/konf/lok/b.bmp")));
    ASSERT_TRUE(update());
    EXPECT_EQ(own(QStringLiteral("lok/b.bmp")), "-") << "deleted stays deleted";
    put(QStringLiteral("prog/konf/hilfe.txt"), "neu");
    put(QStringLiteral("prog/konf/lok/a.bmp"), "A2");
    put(QStringLiteral("prog/konf/lok/c.bmp"), "C");
    put(QStringLiteral("prog/konf/lok/mine.bmp"), "M");
    ASSERT_TRUE(update());
    EXPECT_EQ(own(QStringLiteral("hilfe.txt")), "neu");
    EXPECT_EQ(own(QStringLiteral("lok/a.bmp")), "mine");
    EXPECT_EQ(own(QStringLiteral("lok/c.bmp")), "C");
    EXPECT_EQ(own(QStringLiteral("lok/mine.bmp")), "mine too");
}

} // namespace hr::tests
