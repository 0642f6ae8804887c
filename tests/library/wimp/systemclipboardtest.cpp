#include "support/windowtest.h"

#include "library/containers/string.h"
#include "library/wimp/systemclipboard.h"
#include "library/wimp/textclipboard.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

namespace {

constexpr const char* Type = "application/x-of-our-own";
constexpr int Limit = 1000;

vector<uint8_t> BytesOf(const std::string& text)
{
    vector<uint8_t> bytes;
    for (const char c : text)
        bytes.push_back(static_cast<uint8_t>(c));
    return bytes;
}

class SystemClipboard : public TWindowTest
{
protected:
    std::string GetBytes(int limit = Limit)
    {
        vector<uint8_t> bytes;
        const bool found = Clipboard.GetBytes(Type, limit, bytes);
        EXPECT_EQ(found, !bytes.empty());
        return std::string(bytes.begin(), bytes.end());
    }
    std::string GetText(int limit = Limit)
    {
        TString text;
        const bool found = Clipboard.GetText(limit, text);
        EXPECT_EQ(found, !text.IsEmpty());
        return text.Print();
    }

    TSystemClipboard Clipboard;
};

} // namespace

TEST_F(SystemClipboard, HoldsBytesAndATextAtOnce)
{
    Clipboard.Put(Type, BytesOf(std::string("a\0b", 3)), "caf\xc3\xa9\n");
    EXPECT_TRUE(Clipboard.IsOwn());
    EXPECT_TRUE(Clipboard.HasType(Type));
    EXPECT_EQ(GetBytes(), std::string("a\0b", 3));
    EXPECT_EQ(GetText(), "caf\xc3\xa9\n");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromUtf8("caf\xc3\xa9\n"));
}

TEST_F(SystemClipboard, IsNobodysOnceSomethingElseWasCopied)
{
    Clipboard.Put(Type, BytesOf("a"), "b");
    SetClipboardText("of a field");
    EXPECT_FALSE(Clipboard.IsOwn());
    EXPECT_FALSE(Clipboard.HasType(Type));
    EXPECT_EQ(GetBytes(), "");
    EXPECT_EQ(GetText(), "of a field");
    Clipboard.Put(Type, BytesOf("c"), "");
    EXPECT_TRUE(Clipboard.IsOwn());
    EXPECT_EQ(GetText(), "");
}

TEST_F(SystemClipboard, IsNotOwnWhereAnotherOfThisProgramPutItThere)
{
    TSystemClipboard other;
    other.Put(Type, BytesOf("a"), "");
    EXPECT_FALSE(Clipboard.IsOwn());
    EXPECT_EQ(GetBytes(), "a");
}

TEST_F(SystemClipboard, GivesNothingBeyondTheLimit)
{
    Clipboard.Put(Type, BytesOf("12345"), "12345");
    EXPECT_EQ(GetBytes(5), "12345");
    EXPECT_EQ(GetBytes(4), "");
    EXPECT_EQ(GetText(5), "12345");
    EXPECT_EQ(GetText(4), "");
}

// Who has a text of any size may be asked for its bytes, not for a text, which would be a copy of twice the
// size.
TEST_F(SystemClipboard, ATextIsMeasuredBeforeItIsConverted)
{
    class TTextData : public QMimeData
    {
    public:
        TTextData(const QByteArray& text, bool& converted) : Text(text), Converted(converted) {}
        bool hasFormat(const QString& type) const override { return formats().contains(type); }
        QStringList formats() const override { return {"text/plain;charset=utf-8", "text/plain"}; }

    protected:
        QVariant retrieveData(const QString&, QMetaType type) const override
        {
            if (type.id() == QMetaType::QString) {
                Converted = true;
                return QString::fromUtf8(Text);
            }
            return Text;
        }

    private:
        QByteArray Text;
        bool& Converted;
    };
    bool converted = false;
    QGuiApplication::clipboard()->setMimeData(new TTextData(QByteArray(Limit + 1, 'x'), converted));
    EXPECT_EQ(GetText(), "");
    EXPECT_FALSE(converted);
    QGuiApplication::clipboard()->setMimeData(new TTextData("caf\xc3\xa9", converted));
    EXPECT_EQ(GetText(), "caf\xc3\xa9");
    // Some end their texts so.
    QGuiApplication::clipboard()->setMimeData(new TTextData(QByteArray("end\0", 4), converted));
    EXPECT_EQ(GetText(), "end");
    // What a text would hide behind a zero is not dropped silently.
    QGuiApplication::clipboard()->setMimeData(new TTextData(QByteArray("a\0b", 3), converted));
    EXPECT_EQ(GetText(), "");
    EXPECT_FALSE(converted);
}

// Its own window system's part: whoever has the clipboard and does not answer.
TEST_F(SystemClipboard, ASlowAnswerIsRemembered)
{
    class TSlowData : public QMimeData
    {
    public:
        bool hasFormat(const QString&) const override
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(2200));
            return false;
        }
    };
    QGuiApplication::clipboard()->setMimeData(new TSlowData);
    EXPECT_FALSE(Clipboard.IsSlow());
    EXPECT_FALSE(Clipboard.HasType(Type));
    EXPECT_TRUE(Clipboard.IsSlow());
    SetClipboardText("from somebody else");
    Settle();
    EXPECT_FALSE(Clipboard.IsSlow());
}
