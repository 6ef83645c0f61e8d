#include "Database.h"

#include "SettingsStore.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace
{

const std::vector<const char*> ONE_STEP = {"CREATE TABLE word (text TEXT)"};
const std::vector<const char*> TWO_STEPS = {"CREATE TABLE word (text TEXT)",
                                            "ALTER TABLE word ADD COLUMN number INTEGER DEFAULT 7"};

std::int64_t Ask(CDatabase& database, const char* sql)
{
    CStatement statement = database.Prepare(sql);
    return statement.Next() ? statement.Number() : -1;
}

} // namespace

TEST(Database, BringsAnOlderFileToTheNewestVersionAndKeepsWhatIsInIt)
{
    const CTempDirectory directory;
    std::string problem;
    {
        CDatabase old;
        ASSERT_TRUE(old.Open(directory.Path("x.db"), ONE_STEP, Durability::EveryCommit, problem)) << problem;
        EXPECT_EQ(1, Ask(old, "PRAGMA user_version"));
        EXPECT_TRUE(old.Prepare("INSERT INTO word VALUES (?)").Bind(std::string("kept")).Run());
    }
    CDatabase database;
    ASSERT_TRUE(database.Open(directory.Path("x.db"), TWO_STEPS, Durability::EveryCommit, problem)) << problem;
    EXPECT_EQ(2, Ask(database, "PRAGMA user_version"));
    EXPECT_EQ(7, Ask(database, "SELECT number FROM word WHERE text = 'kept'"));
}

TEST(Database, AStepThatFailsLeavesTheFileAsItWas)
{
    const CTempDirectory directory;
    std::string problem;
    {
        CDatabase old;
        ASSERT_TRUE(old.Open(directory.Path("x.db"), ONE_STEP, Durability::EveryCommit, problem));
    }
    {
        CDatabase database;
        EXPECT_FALSE(database.Open(directory.Path("x.db"), {ONE_STEP[0], "CREATE TABLE more (a); NO SUCH THING"},
                                   Durability::EveryCommit, problem));
        EXPECT_NE(std::string::npos, problem.find("cannot be brought to version 2")) << problem;
    }
    CDatabase again;
    ASSERT_TRUE(again.Open(directory.Path("x.db"), TWO_STEPS, Durability::EveryCommit, problem)) << problem;
    EXPECT_EQ(0, Ask(again, "SELECT count(*) FROM sqlite_schema WHERE name = 'more'"));
}

TEST(Database, AFileOfANewerProgramIsLeftAlone)
{
    const CTempDirectory directory;
    std::string problem;
    {
        CDatabase newer;
        ASSERT_TRUE(newer.Open(directory.Path("x.db"), TWO_STEPS, Durability::EveryCommit, problem));
    }
    CDatabase database;
    EXPECT_FALSE(database.Open(directory.Path("x.db"), ONE_STEP, Durability::EveryCommit, problem));
    EXPECT_NE(std::string::npos, problem.find("written by a newer program")) << problem;
}

TEST(Database, ADamagedFileIsNamed)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("x.db", std::string(4096, 'x'));
    std::string problem;
    CDatabase database;
    EXPECT_FALSE(database.Open(path, ONE_STEP, Durability::EveryCommit, problem));
    EXPECT_NE(std::string::npos, problem.find("'" + path + "' is damaged (file is not a database)")) << problem;
    EXPECT_EQ(std::string(4096, 'x'), directory.Read("x.db"));
}

TEST(Database, AFileThatCannotBeOpenedIsNamed)
{
    const CTempDirectory directory;
    std::string problem;
    CDatabase database;
    EXPECT_FALSE(database.Open(directory.Path("none/x.db"), ONE_STEP, Durability::EveryCommit, problem));
    EXPECT_NE(std::string::npos, problem.find("cannot be opened")) << problem;
}

TEST(Database, ATransactionThatIsNotCommittedIsUndone)
{
    const CTempDirectory directory;
    std::string problem;
    CDatabase database;
    ASSERT_TRUE(database.Open(directory.Path("x.db"), ONE_STEP, Durability::EveryCommit, problem));
    {
        const CTransaction transaction(database);
        EXPECT_TRUE(database.Execute("INSERT INTO word VALUES ('lost')"));
    }
    {
        CTransaction transaction(database);
        EXPECT_TRUE(database.Execute("INSERT INTO word VALUES ('kept')"));
        EXPECT_TRUE(transaction.Commit());
    }
    EXPECT_EQ(1, Ask(database, "SELECT count(*) FROM word"));
}

TEST(Database, TextHoldsAnyBytes)
{
    const CTempDirectory directory;
    std::string problem;
    CDatabase database;
    ASSERT_TRUE(database.Open(directory.Path("x.db"), ONE_STEP, Durability::EveryCommit, problem));
    const std::string odd = "'; DROP TABLE word; --\xff\xfe\n";
    ASSERT_TRUE(database.Prepare("INSERT INTO word VALUES (?)").Bind(odd).Run());
    CStatement read = database.Prepare("SELECT text FROM word");
    ASSERT_TRUE(read.Next());
    EXPECT_EQ(odd, read.Text());
}

// What was acknowledged is on disk although nothing closes the file: a second connection sees it, as a process would
// that starts after this one was killed.
TEST(SettingsStore, ASavedSettingIsOnDiskAtOnce)
{
    const CTempDirectory directory;
    std::string problem;
    CSettingsStore first;
    ASSERT_TRUE(first.Open(directory.Path("x.db"), problem)) << problem;
    const CameraOptions options;
    DeviceSettings settings = DefaultSettings(options);
    settings.image.bright = 77;
    ASSERT_TRUE(first.Save(SettingsTopic::Image, settings));
    CSettingsStore second;
    ASSERT_TRUE(second.Open(directory.Path("x.db"), problem)) << problem;
    DeviceSettings read = DefaultSettings(options);
    second.Load(options, read);
    EXPECT_EQ(77, read.image.bright);
}

TEST(SettingsStore, SavesTheNamedTopicOnly)
{
    const CTempDirectory directory;
    std::string problem;
    CSettingsStore store;
    ASSERT_TRUE(store.Open(directory.Path("x.db"), problem)) << problem;
    const CameraOptions options;
    DeviceSettings settings = DefaultSettings(options);
    settings.image.bright = 77;
    settings.focus = 11;
    ASSERT_TRUE(store.Save(SettingsTopic::PtzLens, settings));
    DeviceSettings read = DefaultSettings(options);
    store.Load(options, read);
    EXPECT_EQ(50, read.image.bright);
    EXPECT_EQ(11U, read.focus);
}

TEST(SettingsStore, AFieldThatIsNotStoredKeepsItsDefault)
{
    const CTempDirectory directory;
    std::string problem;
    {
        CSettingsStore store;
        ASSERT_TRUE(store.Open(directory.Path("x.db"), problem)) << problem;
        ASSERT_TRUE(store.Save(SettingsTopic::Image, DefaultSettings(CameraOptions())));
    }
    {
        CDatabase database;
        ASSERT_TRUE(database.Open(directory.Path("x.db"), {"", ""}, Durability::EveryCommit, problem)) << problem;
        ASSERT_TRUE(database.Execute("DELETE FROM setting WHERE field = 'hue'"));
        ASSERT_TRUE(database.Execute("INSERT INTO setting VALUES ('image', 0, 'of a later version', 'x')"));
    }
    CSettingsStore store;
    ASSERT_TRUE(store.Open(directory.Path("x.db"), problem)) << problem;
    DeviceSettings read = DefaultSettings(CameraOptions());
    store.Load(CameraOptions(), read);
    EXPECT_EQ(50, read.image.hue);
}
