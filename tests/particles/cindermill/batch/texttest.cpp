#include "batchfixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <bit>
#include <cstring>
#include <map>

namespace {

// Effects under version control: their texts, what they differ by, and git.
class TBatchTexts : public TBatch
{
protected:
    // A sample in which one number is another.
    void WriteChanged(const std::string& path, float from, float to)
    {
        std::string effect = ReadBytes(SourcePath("samples/fountain.effect"));
        const std::string bytes(reinterpret_cast<const char*>(&from), sizeof(from));
        const size_t at = effect.find(bytes);
        ASSERT_NE(std::string::npos, at);
        ASSERT_EQ(std::string::npos, effect.find(bytes, at + 1)) << "stands in several places";
        std::memcpy(effect.data() + at, &to, sizeof(to));
        WriteBytes(path, effect);
    }
    // One document, as the schema tells it.
    static QJsonObject Parse(const std::string& text)
    {
        QJsonParseError error;
        const QJsonObject document =
            QJsonDocument::fromJson(QByteArray::fromStdString(text), &error).object();
        EXPECT_EQ(QJsonParseError::NoError, error.error) << error.errorString().toStdString();
        const QJsonObject schema =
            QJsonDocument::fromJson(
                QByteArray::fromStdString(ReadBytes(SourcePath("docs/schemas/diff.schema.json"))))
                .object();
        ExpectFits(document, schema);
        const QJsonObject ofOne = schema["$defs"].toObject()["difference"].toObject();
        for (const QJsonValue& difference : document["differences"].toArray())
            ExpectFits(difference.toObject(), ofOne);
        return document;
    }
    // The members that there must be and no others, with the values and types that they may have.
    static void ExpectFits(const QJsonObject& object, const QJsonObject& schema)
    {
        const QJsonObject properties = schema["properties"].toObject();
        EXPECT_FALSE(properties.isEmpty());
        for (const QJsonValue& name : schema["required"].toArray())
            EXPECT_TRUE(object.contains(name.toString())) << name.toString().toStdString();
        for (const QString& name : object.keys()) {
            SCOPED_TRACE(name.toStdString());
            ASSERT_TRUE(properties.contains(name));
            const QJsonObject property = properties[name].toObject();
            const QJsonValue value = object[name];
            if (property.contains("const")) {
                EXPECT_EQ(property["const"], value);
            }
            if (property.contains("enum")) {
                EXPECT_TRUE(property["enum"].toArray().contains(value));
            }
            if (property["type"].toString() == "object")
                ExpectFits(value.toObject(), property);
            if (property["type"].toString() == "string") {
                EXPECT_TRUE(value.isString());
            }
            if (property["type"].isArray()) {
                EXPECT_TRUE(value.isString() || value.isNull());
            }
        }
    }
    // In the folder "repository", which is a person's with nothing of this machine's settings.
    TOutcome Git(const std::string& arguments)
    {
        const std::string out = Folder.Path("git.out");
        const std::string command =
            "cd '" + Folder.Path("repository") + "' && HOME='" + Folder.GetFolder() + "' XDG_CONFIG_HOME='" +
            Folder.GetFolder() +
            "/config' GIT_CONFIG_NOSYSTEM=1 GIT_PAGER=cat git -c user.name=A -c user.email=a@b " + arguments +
            " >'" + out + "' 2>'" + out + ".err'";
        const int status = std::system(command.c_str());
        return TOutcome{WEXITSTATUS(status), ReadBytes(out), ReadBytes(out + ".err")};
    }
};

} // namespace

TEST_F(TBatchTexts, ATextIsThatOfEverySample)
{
    for (const auto& entry : std::filesystem::directory_iterator(SourcePath("samples"))) {
        if (entry.path().extension() != ".effect")
            continue;
        const TOutcome text = Run("text '" + entry.path().string() + "'");
        EXPECT_EQ(0, text.Status) << text.Err;
        EXPECT_EQ("", text.Err);
        EXPECT_EQ("cindermill effect 1", Lines(text.Out).at(0));
        ASSERT_EQ(0, Run("resave '" + entry.path().string() + "' '" + Folder.Path("a.effect") + "'").Status);
        EXPECT_EQ(text.Out, Run("text '" + Folder.Path("a.effect") + "'").Out);
        const TOutcome same = Run("diff '" + entry.path().string() + "' '" + Folder.Path("a.effect") + "'");
        EXPECT_EQ(0, same.Status);
        EXPECT_EQ("", same.Out + same.Err);
    }
}

TEST_F(TBatchTexts, ADifferenceIsToldInBothFormats)
{
    WriteChanged(Folder.Path("b.effect"), 300, 299.5f);
    const std::string files = Sample("fountain") + " '" + Folder.Path("b.effect") + "'";
    const TOutcome text = Run("diff " + files);
    EXPECT_EQ(1, text.Status);
    EXPECT_EQ("changed node \"Emitter\": input \"Rate\": 300 -> 299.5\n", text.Out);
    EXPECT_EQ("", text.Err);
    EXPECT_EQ(text.Out, Run("diff " + files + " --format text").Out);
    const TOutcome json = Run("diff --format json " + files);
    EXPECT_EQ(1, json.Status);
    const QJsonObject document = Parse(json.Out);
    EXPECT_EQ(SourcePath("samples/fountain.effect"), document["before"].toString().toStdString());
    EXPECT_EQ(Folder.Path("b.effect"), document["after"].toString().toStdString());
    ASSERT_EQ(1, document["differences"].toArray().size());
    const QJsonObject difference = document["differences"].toArray().at(0).toObject();
    const std::map<QString, QString> members = {{"kind", "changed"},   {"node", "\"Emitter\""},
                                                {"class", "TEmitter"}, {"what", "input \"Rate\""},
                                                {"from", "300"},       {"to", "299.5"}};
    for (const auto& [name, value] : members)
        EXPECT_EQ(value, difference[name].toString()) << name.toStdString();
    EXPECT_TRUE(difference["type"].isNull());
    const TOutcome none = Run("diff --format json " + Sample("fountain") + " " + Sample("fountain"));
    EXPECT_EQ(0, none.Status);
    EXPECT_EQ(0, Parse(none.Out)["differences"].toArray().size());
}

TEST_F(TBatchTexts, TwoSamplesDifferInWholeNodes)
{
    const TOutcome outcome = Run("diff " + Sample("fountain") + " " + Sample("campfire"));
    EXPECT_EQ(1, outcome.Status);
    EXPECT_NE(std::string::npos, outcome.Out.find("added node "));
    EXPECT_NE(std::string::npos, outcome.Out.find("rewired node "));
    Parse(Run("diff --format json " + Sample("fountain") + " " + Sample("campfire")).Out);
    const TOutcome back = Run("diff " + Sample("campfire") + " " + Sample("fountain"));
    EXPECT_NE(std::string::npos, back.Out.find("removed node "));
}

TEST_F(TBatchTexts, WrongCommandLinesAndFilesAreTold)
{
    for (const char* line : {"text", "text a b", "diff", "diff a", "diff a b c", "diff a b --format",
                             "diff a b --format xml", "diff --format json a"}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(2, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_NE(std::string::npos, outcome.Err.find("\nusage: ")) << line;
    }
    const std::string none = "'" + Folder.Path("none.effect") + "'";
    for (const std::string& line : {"text " + none, "diff " + none + " " + Sample("fountain"),
                                    "diff " + Sample("fountain") + " " + none}) {
        const TOutcome outcome = Run(line);
        EXPECT_EQ(1, outcome.Status) << line;
        EXPECT_EQ("", outcome.Out) << line;
        EXPECT_EQ(Folder.Path("none.effect") + ": The file does not exist\n", outcome.Err);
    }
}

// As docs/batch.md tells it.
TEST_F(TBatchTexts, GitShowsWhatHasChangedInAnEffect)
{
    std::filesystem::create_directory(Folder.Path("repository"));
    ASSERT_EQ(0, Git("init").Status);
    WriteBytes(Folder.Path("repository/.gitattributes"), "*.effect diff=effect\n");
    const std::string program = std::string("'\"'\"'") + CINDERMILL_BATCH + "'\"'\"' text";
    ASSERT_EQ(0, Git("config diff.effect.textconv '" + program + "'").Status);
    ASSERT_EQ(0, Git("config diff.effect.xfuncname '^((node|type|order).*)$'").Status);
    std::filesystem::copy(SourcePath("samples/fountain.effect"), Folder.Path("repository/fountain.effect"));
    ASSERT_EQ(0, Git("add .").Status);
    ASSERT_EQ(0, Git("commit -q -m first").Status);
    EXPECT_EQ("", Git("diff").Out);
    WriteChanged(Folder.Path("repository/fountain.effect"), 300, 299.5f);
    const TOutcome diff = Git("diff");
    EXPECT_EQ(0, diff.Status) << diff.Err;
    EXPECT_NE(std::string::npos, diff.Out.find("\n-  input \"Rate\": 300\n+  input \"Rate\": 299.5\n"))
        << diff.Out;
    EXPECT_NE(std::string::npos, diff.Out.find(" @@ node \"Emitter\"\n")) << diff.Out;
    ASSERT_EQ(0, Git("commit -q -a -m second").Status);
    EXPECT_NE(std::string::npos, Git("log -p -1").Out.find("\n+  input \"Rate\": 299.5\n"));
}
